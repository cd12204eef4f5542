// WebGL 2, which is OpenGL ES 3.0: on the page's canvas where a graphics card draws it, elsewhere on one that is not
// shown.
#include "boards/gpu/gl_context.h"

#include "backends/web/page_calls.h"

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
    context = emscripten_webgl_create_context(MayHaveGraphicsCard() ? "#screen" : "#hidden-screen", &attributes);
    if (context > 0 && emscripten_webgl_make_context_current(context) == EMSCRIPTEN_RESULT_SUCCESS)
        return LoadGl(error);
    error = "this browser has no WebGL 2";
    return false;
}

bool MayHaveGraphicsCard() {
    return pageHasGraphicsCard() != 0;
}

bool GlIsSoftware() {
    return !MayHaveGraphicsCard();
}
