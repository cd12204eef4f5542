#include "boards/gpu/gl_platform.h"

#include <cstring>
#include <emscripten/html5.h>

extern "C" void glClearDepthf(float depth);

namespace {

// OpenGL ES has it with floats only.
void ClearDepth(double depth) {
    glClearDepthf(static_cast<float>(depth));
}

}  // namespace

void* FindGlFunction(const char* name) {
    if (std::strcmp(name, "glClearDepth") == 0) return reinterpret_cast<void*>(ClearDepth);
    return emscripten_webgl_get_proc_address(name);
}

const char* GlslVersion() {
    return "#version 300 es\nprecision highp float;\nprecision highp int;\n";
}
