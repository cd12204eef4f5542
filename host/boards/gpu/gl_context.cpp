#include "boards/gpu/gl_context.h"

#include <SDL.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace {

bool startedVideo = false;
SDL_Window* window = nullptr;
SDL_GLContext context = nullptr;

bool StartVideo(const char* driver) {
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (driver) SDL_SetHint(SDL_HINT_VIDEODRIVER, driver);
    startedVideo = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
    SDL_ResetHint(SDL_HINT_VIDEODRIVER);
    return startedVideo;
}

bool OpenHiddenWindow() {
    AskForGlContext();
    window = SDL_CreateWindow("", 0, 0, 16, 16, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    context = window ? SDL_GL_CreateContext(window) : nullptr;
    return context != nullptr;
}

void CloseContext() {
    if (context) SDL_GL_DeleteContext(context);
    if (window) SDL_DestroyWindow(window);
    if (startedVideo) SDL_QuitSubSystem(SDL_INIT_VIDEO);
    context = nullptr;
    window = nullptr;
    startedVideo = false;
}

// SDL's offscreen driver needs no display and is tried first. When SDL_VIDEODRIVER is set, both tries use that driver.
bool OpenContext() {
    if (SDL_WasInit(SDL_INIT_VIDEO)) return OpenHiddenWindow();
    if (StartVideo("offscreen") && OpenHiddenWindow()) return true;
    CloseContext();
    return StartVideo(nullptr) && OpenHiddenWindow();
}

}  // namespace

void AskForGlContext() {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
}

bool EnterGl(std::string& error) {
    if (SDL_WasInit(SDL_INIT_VIDEO) && SDL_GL_GetCurrentContext()) return LoadGl(error);
    if (OpenContext()) return LoadGl(error);
    error = std::string("no OpenGL 3.3 context: ") + SDL_GetError();
    CloseContext();
    return false;
}

// Linux has a file for each card that can draw: those of its own drivers, and those of two drivers from outside of it.
bool MayHaveGraphicsCard() {
#ifdef __linux__
    std::error_code ignored;
    for (const auto& file : std::filesystem::directory_iterator("/dev/dri", ignored))
        if (file.path().filename().string().starts_with("renderD")) return true;
    return std::filesystem::exists("/dev/nvidiactl", ignored) || std::filesystem::exists("/dev/dxg", ignored);
#else
    return true;
#endif
}

bool GlIsSoftware() {
    const auto* text = reinterpret_cast<const char*>(gl::GetString(GL_RENDERER));
    const std::string_view renderer = text ? text : "";
    constexpr std::string_view SOFTWARE[] = {"llvmpipe", "softpipe", "SwiftShader", "Software Rasterizer"};
    return std::any_of(std::begin(SOFTWARE), std::end(SOFTWARE),
                       [&](std::string_view name) { return renderer.find(name) != renderer.npos; });
}
