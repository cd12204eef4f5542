#include "character/mesh.h"

uint32_t CharPointBase;
uint32_t CharPolyBase;

// Comes with the character's files: until then the level holds no mesh.
void LoadMesh(const char*, MeshRecord&, const char*) {}
