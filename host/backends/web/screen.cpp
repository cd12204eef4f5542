#include "backends/web/screen.h"

#include "backends/web/page_calls.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gl_picture.h"
#include "machine/picture_area.h"
#include "machine/picture_scaler.h"
#include "machine/settings.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

std::optional<GlPicture> withGl;
int screenWidth = 0, screenHeight = 0;    // of the page's screen when it was drawn last, pixels
int pictureWidth = 0, pictureHeight = 0;  // of the picture on the plain canvas; 0: there is none
std::vector<uint32_t> canvasPixels;

void DrawWithGl() {
    pageScreenSize(&screenWidth, &screenHeight);
    if (withGl->Draw(screenWidth, screenHeight)) pageShown();
}

void PlaceCanvases() {
    pageScreenSize(&screenWidth, &screenHeight);
    if (pictureWidth == 0) return;
    const int scaling = SettingValue(Setting::Scaling);
    const bool whole = scaling == static_cast<int>(ScalingChoice::Integer);
    const PictureArea area =
        (whole ? FitWholePixels : FitPicture)(pictureWidth, pictureHeight, screenWidth, screenHeight);
    pagePlacePicture(area.x, area.y, area.width, area.height, FilterOf(scaling, pictureWidth) == PictureFilter::Linear,
                     SettingValue(Setting::Brightness));
}

}  // namespace

void TakeRedFirst(const Picture& picture, std::vector<uint32_t>& pixels) {
    pixels.assign(picture.pixels, picture.pixels + picture.width * picture.height);
    for (uint32_t& pixel : pixels)
        pixel = 0xFF000000 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
}

void OpenScreen() {
    std::string problem;
    pictureWidth = pictureHeight = 0;
    withGl.reset();
    if (!MayHaveGraphicsCard()) return;
    withGl.emplace();
    if (EnterGl(problem) && withGl->Prepare(problem)) return;
    std::fprintf(stderr, "no WebGL: %s\n", problem.c_str());
    withGl.reset();
}

void ShowPicture(const Picture& picture) {
    if (withGl) {
        withGl->Take(picture);
        DrawWithGl();
        return;
    }
    TakeRedFirst(picture, canvasPixels);
    pageShowPixels(canvasPixels.data(), picture.width, picture.height);
    const bool sameSize = picture.width == pictureWidth && picture.height == pictureHeight;
    pictureWidth = picture.width;
    pictureHeight = picture.height;
    if (!sameSize) PlaceCanvases();
    pageShown();
}

bool ShowTexture(uint32_t texture, int width, int height) {
    if (!withGl) return false;
    withGl->TakeTexture(texture, width, height);
    DrawWithGl();
    return true;
}

void ShowOverlayPicture(const Picture* overlay) {
    if (withGl) {
        withGl->TakeOverlay(overlay);
        DrawWithGl();
    } else if (overlay) {
        const auto count = static_cast<size_t>(overlay->width) * static_cast<size_t>(overlay->height);
        pageShowOverlay(RedFirst({overlay->pixels, count}).data(), overlay->width, overlay->height);
    } else {
        pageShowOverlay(nullptr, 0, 0);
    }
}

void ShowAgain() {
    if (withGl)
        DrawWithGl();
    else
        PlaceCanvases();
}

// The front end draws only when something changes, and the page may have another size by then.
void ShowAgainAfterResize() {
    int width = 0, height = 0;
    pageScreenSize(&width, &height);
    if (width != screenWidth || height != screenHeight) ShowAgain();
}
