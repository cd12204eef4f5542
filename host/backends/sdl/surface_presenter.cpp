#include "backends/sdl/presenter.h"
#include "machine/picture_area.h"
#include "machine/picture_scaler.h"
#include "machine/settings.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace {

// What decides where and how the picture lies in the window. While all of it stays, rows that do not change stay, too.
struct Layout {
    int windowWidth, windowHeight, pictureWidth, pictureHeight, scaling, brightness;
    bool operator==(const Layout&) const = default;
};

// The processor scales the picture into the window's memory, and only the rows of it that have changed.
class SurfacePresenter : public Presenter {
public:
    explicit SurfacePresenter(SDL_Window* shownIn) : window(shownIn) {}

    ~SurfacePresenter() override { SDL_FreeSurface(canvas); }

    void Show(const Picture& picture) override {
        const Span changed = Take(picture);
        SDL_Surface* const target = SDL_GetWindowSurface(window);  // a new one after each change of size
        if (!target || layout != LayoutNow(*target)) return ShowAgain();
        SDL_Rect drawn = DrawRows(*target, changed);
        if (drawn.h > 0) SDL_UpdateWindowSurfaceRects(window, &drawn, 1);
    }

    bool ShowTexture(uint32_t, int, int) override { return false; }

    void SetOverlay(const Picture* picture) override {
        overlay.clear();
        if (picture) overlay.assign(picture->pixels, picture->pixels + picture->width * picture->height);
        if (picture) overlayWidth = picture->width, overlayHeight = picture->height;
        layout.reset();
    }

    void ShowAgain() override {
        SDL_Surface* const target = SDL_GetWindowSurface(window);
        if (shown.empty() || !target) return;
        layout = LayoutNow(*target);
        const bool whole = layout->scaling == static_cast<int>(ScalingChoice::Integer);
        area = (whole ? FitWholePixels : FitPicture)(width, height, target->w, target->h);
        scaler.Prepare(width, height, area.width, area.height, FilterOf(layout->scaling, width));
        if (!overlay.empty()) ScaleOverlay();
        SDL_FillRect(target, nullptr, 0);
        DrawRows(*target, {0, height});
        SDL_UpdateWindowSurface(window);
    }

private:
    struct Span {
        int first, end;  // rows
    };

    // Keeps the picture, and tells the rows that differ from the one before.
    Span Take(const Picture& picture) {
        const auto pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
        Span changed{0, picture.height};
        if (picture.width == width && picture.height == height && !shown.empty()) {
            const auto same = [&](int row) {
                const size_t start = static_cast<size_t>(row) * static_cast<size_t>(width);
                return std::memcmp(&shown[start], picture.pixels + start, static_cast<size_t>(width) * 4) == 0;
            };
            while (changed.first < changed.end && same(changed.first))
                ++changed.first;
            while (changed.first < changed.end && same(changed.end - 1))
                --changed.end;
        }
        shown.assign(picture.pixels, picture.pixels + pixels);
        width = picture.width;
        height = picture.height;
        return changed;
    }

    Layout LayoutNow(const SDL_Surface& target) const {
        return {target.w, target.h, width, height, SettingValue(Setting::Scaling), SettingValue(Setting::Brightness)};
    }

    // Draws the rows of the picture and returns the part of the window that they are in.
    SDL_Rect DrawRows(SDL_Surface& target, Span changed) {
        SDL_Surface* const drawn = Canvas(target);
        const PictureScaler::Rows rows = scaler.ShownRows(changed.first, changed.end);
        if (!drawn || changed.first >= changed.end) return {};
        const int pitch = drawn->pitch / static_cast<int>(sizeof(uint32_t));
        uint32_t* const corner = static_cast<uint32_t*>(drawn->pixels) + area.y * pitch + area.x;
        scaler.Scale(Brightened(), rows.first, rows.end, corner, static_cast<size_t>(pitch));
        if (!overlay.empty()) LayOver(corner, static_cast<size_t>(pitch), rows);
        SDL_Rect part{area.x, area.y + rows.first, area.width, rows.end - rows.first};
        SDL_Rect place = part;
        if (drawn != &target) SDL_BlitSurface(drawn, &part, &target, &place);
        return part;
    }

    // The window's memory, or where its pixels are not 0x00RRGGBB, memory of the same size in which they are. Null:
    // there is none.
    SDL_Surface* Canvas(SDL_Surface& target) {
        const SDL_PixelFormat& format = *target.format;
        if (format.BytesPerPixel == sizeof(uint32_t) && format.Rmask == 0xFF0000 && format.Bmask == 0xFF)
            return &target;
        if (!canvas || canvas->w != target.w || canvas->h != target.h) {
            SDL_FreeSurface(canvas);
            canvas = SDL_CreateRGBSurfaceWithFormat(0, target.w, target.h, 32, SDL_PIXELFORMAT_RGB888);
        }
        return canvas;
    }

    const uint32_t* Brightened() {
        if (layout->brightness == 100) return shown.data();
        uint32_t table[256];
        for (uint32_t value = 0; value < 256; ++value)
            table[value] = std::min(value * static_cast<uint32_t>(layout->brightness) / 100, 255u);
        bright.resize(shown.size());
        std::transform(shown.begin(), shown.end(), bright.begin(), [&](uint32_t pixel) {
            return table[pixel >> 16 & 0xFF] << 16 | table[pixel >> 8 & 0xFF] << 8 | table[pixel & 0xFF];
        });
        return bright.data();
    }

    void ScaleOverlay() {
        PictureScaler overlayScaler;
        overlayScaler.Prepare(overlayWidth, overlayHeight, area.width, area.height,
                              FilterOf(layout->scaling, overlayWidth));
        wideOverlay.resize(static_cast<size_t>(area.width) * static_cast<size_t>(area.height));
        overlayScaler.Scale(overlay.data(), 0, area.height, wideOverlay.data(), static_cast<size_t>(area.width));
    }

    void LayOver(uint32_t* corner, size_t pitch, PictureScaler::Rows rows) const {
        for (int y = rows.first; y < rows.end; ++y) {
            const uint32_t* over = &wideOverlay[static_cast<size_t>(y) * static_cast<size_t>(area.width)];
            uint32_t* under = corner + static_cast<size_t>(y) * pitch;
            for (int x = 0; x < area.width; ++x, ++over, ++under)
                if (const uint32_t opacity = *over >> 24) *under = MixPixels(*under, *over, opacity + (opacity >> 7));
        }
    }

    SDL_Window* window;
    SDL_Surface* canvas = nullptr;  // see Canvas
    std::optional<Layout> layout;   // layout of what the window shows; none: all of it must be drawn
    PictureArea area{};
    PictureScaler scaler;
    int width = 0, height = 0;  // size of the picture in pixels
    std::vector<uint32_t> shown, bright;
    std::vector<uint32_t> overlay, wideOverlay;  // empty: there is none
    int overlayWidth = 0, overlayHeight = 0;
};

}  // namespace

std::unique_ptr<Presenter> MakeSurfacePresenter(SDL_Window* window) {
    return std::make_unique<SurfacePresenter>(window);
}
