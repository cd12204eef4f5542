// WebGL 2 on the page's canvas: OpenGL ES 3.0.
#include "boards/gpu/gl_context.h"

#include <emscripten/html5.h>

namespace {

EMSCRIPTEN_WEBGL_CONTEXT_HANDLE context = 0;

}  // namespace

void AskForGlContext() {}

bool EnterGl(std::string& error) {
    if (context > 0) return LoadGl(error);
    EmscriptenWebGLContextAttributes attributes;
    emscripten_webgl_init_context_attributes(&attributes);
    attributes.majorVersion = 2;
    attributes.alpha = false;
    attributes.depth = false;
    attributes.antialias = false;
    attributes.preserveDrawingBuffer = true;  // what is shown stays readable, for pictures that the player keeps
    context = emscripten_webgl_create_context("#screen", &attributes);
    if (context > 0 && emscripten_webgl_make_context_current(context) == EMSCRIPTEN_RESULT_SUCCESS)
        return LoadGl(error);
    error = "this browser has no WebGL 2";
    return false;
}

bool MayHaveGraphicsCard() {
    return true;
}

bool GlIsSoftware() {
    return false;  // browsers do not tell; what they draw with is quicker than what runs in the page
}
