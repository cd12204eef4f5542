#include "game_picture/game_picture.h"

#include "app/app_tables.h"
#include "host/glide.h"
#include "memory/fatal.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/textures.h"

#include <cstring>

namespace {

Rgba SoftwarePixel(int x, int y) {
    const uint8_t* colour = TextureImage + TEXTURE_PALETTE_OFFSET + size_t{3} * FrameBuffer[y * FramePitch + x];
    const auto channel = [&](size_t c) { return static_cast<uint8_t>(colour[c] * 255 / 63); };
    return {channel(0), channel(1), channel(2)};
}

Rgba AcceleratorPixel(const GrLfbInfo_t& picture, int x, int y) {
    uint16_t pixel;
    const auto* row = static_cast<const uint8_t*>(picture.lfbPtr) + static_cast<size_t>(y) * picture.strideInBytes;
    std::memcpy(&pixel, row + size_t{2} * static_cast<size_t>(x), sizeof pixel);
    return {static_cast<uint8_t>(pixel >> 11 << 3), static_cast<uint8_t>((pixel >> 5 & 0x3F) << 2),
            static_cast<uint8_t>((pixel & 0x1F) << 3)};
}

template <typename PixelAt>
Image Read(const PixelAt& pixelAt) {
    Image image(ScreenWidth, ScreenHeight);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            image.At(x, y) = pixelAt(x, y);
    }
    return image;
}

}  // namespace

Image TakePicture() {
    if (!UseGlide) return Read(SoftwarePixel);
    SwapScreen();
    GrLfbInfo_t picture{};
    picture.size = sizeof picture;
    if (!grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE,
                   &picture))
        FatalError(1, "The accelerator's picture cannot be read", "");
    Image image = Read([&](int x, int y) { return AcceleratorPixel(picture, x, y); });
    grLfbUnlock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER);
    return image;
}
