// The code of the glTF library, which is a header.
#define TINYGLTF_IMPLEMENTATION
#include <tiny_gltf.h>
