#include "boards/gpu/gl_platform.h"

#include <SDL.h>

void* FindGlFunction(const char* name) {
    return SDL_GL_GetProcAddress(name);
}

const char* GlslVersion() {
    return "#version 330 core\n";
}
