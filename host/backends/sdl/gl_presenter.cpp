#include "backends/sdl/presenter.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gl_picture.h"

#include <algorithm>

namespace {

constexpr int VSYNC_FROM_HZ = 70;

// The frame limiter counts whole ticks of 16 ms and forgets remainders. So a swap that waits for the display must end
// within a tick, together with the drawing: that of a 60 Hz display lasts up to 16.7 ms, and would make the game slower
// than its clock.
void ChooseVerticalSync(SDL_Window* window) {
    SDL_DisplayMode mode{};
    const int display = std::max(SDL_GetWindowDisplayIndex(window), 0);
    const bool fastEnough = SDL_GetCurrentDisplayMode(display, &mode) == 0 && mode.refresh_rate >= VSYNC_FROM_HZ;
    SDL_GL_SetSwapInterval(fastEnough ? 1 : 0);
}

class GlPresenter : public Presenter {
public:
    GlPresenter(SDL_Window* shownIn, SDL_GLContext drawnWith) : window(shownIn), context(drawnWith) {}

    ~GlPresenter() override { SDL_GL_DeleteContext(context); }

    bool Prepare() {
        std::string error;
        if (!EnterGl(error) || !shown.Prepare(error)) {
            SDL_SetError("%s", error.c_str());
            return false;
        }
        ChooseVerticalSync(window);
        return true;
    }

    void Show(const Picture& picture) override {
        shown.Take(picture);
        ShowAgain();
    }

    bool ShowTexture(uint32_t texture, int width, int height) override {
        shown.TakeTexture(texture, width, height);
        ShowAgain();
        return true;
    }

    void SetOverlay(const Picture* overlay) override { shown.TakeOverlay(overlay); }

    void ShowAgain() override {
        int width = 0, height = 0;
        SDL_GL_GetDrawableSize(window, &width, &height);
        if (shown.Draw(width, height)) SDL_GL_SwapWindow(window);
    }

private:
    SDL_Window* window;
    SDL_GLContext context;
    GlPicture shown;
};

}  // namespace

std::unique_ptr<Presenter> MakeGlPresenter(SDL_Window* window) {
    const SDL_GLContext context = SDL_GL_CreateContext(window);
    if (!context) return nullptr;
    auto presenter = std::make_unique<GlPresenter>(window, context);
    return presenter->Prepare() ? std::move(presenter) : nullptr;
}
