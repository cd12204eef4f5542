#include "backends/sdl/presenter.h"
#include "machine/picture_area.h"
#include "machine/settings.h"

#include <algorithm>
#include <vector>

namespace {

class SurfacePresenter : public Presenter {
public:
    explicit SurfacePresenter(SDL_Window* shownIn) : window(shownIn) {}

    void Show(const Picture& picture) override {
        shown.Take(picture);
        ShowAgain();
    }

    bool ShowTexture(uint32_t, int, int) override { return false; }

    void SetOverlay(const Picture* picture) override { overlay.Take(picture ? *picture : Picture{}); }

    void ShowAgain() override {
        SDL_Surface* target = SDL_GetWindowSurface(window);  // a new one after each change of size
        if (shown.pixels.empty() || !target) return;
        const bool whole = SettingValue(Setting::Scaling) == static_cast<int>(ScalingChoice::Integer);
        const PictureArea fit = (whole ? FitWholePixels : FitPicture)(shown.width, shown.height, target->w, target->h);
        SDL_FillRect(target, nullptr, 0);
        Layer bright = Brightened(shown);
        Draw(bright, SDL_BLENDMODE_NONE, target, fit);
        Draw(overlay, SDL_BLENDMODE_BLEND, target, fit);
        SDL_UpdateWindowSurface(window);
    }

private:
    struct Layer {
        void Take(const Picture& picture) {
            width = picture.width;
            height = picture.height;
            pixels.assign(picture.pixels, picture.pixels + static_cast<size_t>(width) * static_cast<size_t>(height));
        }

        std::vector<uint32_t> pixels;  // empty: there is none
        int width = 0, height = 0;
    };

    static Layer Brightened(Layer layer) {
        const auto percent = static_cast<uint32_t>(SettingValue(Setting::Brightness));
        if (percent == 100) return layer;
        for (uint32_t& pixel : layer.pixels) {
            const auto part = [&](int shift) {
                return std::min((pixel >> shift & 0xFF) * percent / 100, 255u) << shift;
            };
            pixel = part(16) | part(8) | part(0);
        }
        return layer;
    }

    static void Draw(Layer& layer, SDL_BlendMode mode, SDL_Surface* target, const PictureArea& fit) {
        if (layer.pixels.empty()) return;
        SDL_Surface* source = SDL_CreateRGBSurfaceWithFormatFrom(layer.pixels.data(), layer.width, layer.height, 32,
                                                                 layer.width * 4, SDL_PIXELFORMAT_ARGB8888);
        if (!source) return;
        SDL_Rect area{fit.x, fit.y, fit.width, fit.height};
        SDL_SetSurfaceBlendMode(source, mode);
        SDL_BlitScaled(source, nullptr, target, &area);
        SDL_FreeSurface(source);
    }

    SDL_Window* window;
    Layer shown, overlay;
};

}  // namespace

std::unique_ptr<Presenter> MakeSurfacePresenter(SDL_Window* window) {
    return std::make_unique<SurfacePresenter>(window);
}
