#include "backends/sdl/presenter.h"
#include "machine/picture_area.h"

#include <vector>

namespace {

class SurfacePresenter : public Presenter {
public:
    explicit SurfacePresenter(SDL_Window* shownIn) : window(shownIn) {}

    void Show(const Picture& picture) override {
        width = picture.width;
        height = picture.height;
        pixels.assign(picture.pixels, picture.pixels + static_cast<size_t>(width) * static_cast<size_t>(height));
        ShowAgain();
    }

    bool ShowTexture(uint32_t, int, int) override { return false; }

    void ShowAgain() override {
        SDL_Surface* target = SDL_GetWindowSurface(window);  // a new one after each change of size
        if (pixels.empty() || !target) return;
        SDL_Surface* source =
            SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), width, height, 32, width * 4, SDL_PIXELFORMAT_RGB888);
        if (!source) return;
        const PictureArea fit = FitPicture(width, height, target->w, target->h);
        SDL_Rect area{fit.x, fit.y, fit.width, fit.height};
        SDL_FillRect(target, nullptr, 0);
        SDL_BlitScaled(source, nullptr, target, &area);
        SDL_FreeSurface(source);
        SDL_UpdateWindowSurface(window);
    }

private:
    SDL_Window* window;
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
};

}  // namespace

std::unique_ptr<Presenter> MakeSurfacePresenter(SDL_Window* window) {
    return std::make_unique<SurfacePresenter>(window);
}
