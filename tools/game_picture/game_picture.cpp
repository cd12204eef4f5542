#include "game_picture/game_picture.h"

#include "app/app_tables.h"
#include "app/load_level.h"
#include "character/actor.h"
#include "host/glide.h"
#include "memory/fatal.h"
#include "memory/system.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "records/view_facts.h"
#include "render/raster.h"
#include "render/screen.h"
#include "render/submit.h"
#include "render/textures.h"
#include "world/bsp.h"
#include "world/draw/draw_view.h"
#include "world/world_tables.h"

#include <algorithm>
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

void StartLevel(int32_t level, bool accelerator) {
    UseGlide = accelerator ? 1 : 0;
    BuildReciprocalTable();
    SystemInit();
    InitGraphics(0);
    CurrentLevel = level - 1;  // on which the contrast of the accelerator depends
    LoadLevel(CurrentLevel);
    DepthScale = GLIDE_DEPTH_RANGE / std::max(1.0f, FarDistance);  // as the game's first frame sets it
    MouseInput = {};
}

void DrawFrame(bool withCharacter) {
    FrameCount++;
    if (FrameCount == 0) FillStamps(0xFFFF);
    if (FrameCount == 0x8000) FillStamps(0);
    SubmittedPolygons = 0;
    ClearFrame();
    if (withCharacter) DrawActorAt(0);
    DrawView();
}

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
