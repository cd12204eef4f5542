#include "render/screen.h"

#include "app/app_tables.h"
#include "host/glide.h"
#include "platform/display.h"
#include "records/palette_facts.h"
#include "render/glide_screen.h"
#include "render/textures.h"
#include "world/bsp.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr int32_t PENDING_SWAPS_MAX = 3;

void UseScreenSize() {
    const ScreenRes size = ScreenResTable[ScreenResIndex];
    ScreenWidth = size.width;
    ScreenHeight = size.height;
}

// The frustum ends half a per cent of the screen's size inside its edges.
float ProjectionScale(int32_t size) {
    return static_cast<float>(size / 2.0 * 9.9 / 10.0);
}

void SwapGlide() {
    while (grBufferNumPending() > PENDING_SWAPS_MAX) {
    }
    grBufferSwap(1);
}

}  // namespace

bool InitGraphics(int32_t softwareScreenRes) {
    GlideHardwareReady = 0;
    GlideWindowOpen = 0;
    bool isOpen = true;
    if (UseGlide == 1 && GlideBoardCount() != 0) {
        OpenGlide();
    } else {
        ScreenResIndex = softwareScreenRes;
        isOpen = OpenSoftwareDisplay(MainWindow);
    }
    UseScreenSize();
    SwapScreen();
    return isOpen;
}

void SetupScreen() {
    std::printf("ScreenRes    = %d\n", ScreenResIndex);
    std::printf("ScreenWidth  = %d\n", ScreenWidth);
    std::printf("ScreenHeight = %d\n", ScreenHeight);
    UseScreenSize();
    FramePitch = ScreenWidth;
    ProjectionScaleX = ProjectionScale(ScreenWidth);
    ProjectionScaleY = ProjectionScale(ScreenHeight);
    ScreenCentreX = static_cast<float>(ScreenWidth / 2);
    ScreenCentreY = static_cast<float>(ScreenHeight / 2);
    ScreenAspect = ProjectionScaleX / ProjectionScaleY;

    std::printf("Generating Node Radii\n");
    GenerateNodeRadii();
    std::printf("Setting Texture Palette\n");
    SetTexturePalette();
    std::printf("Swapping Screen\n");
    SwapScreen();
}

void SwapScreen() {
    if (GlideActive())
        SwapGlide();
    else if (DisplayState != DISPLAY_NONE)
        PresentDisplay();
}

void ClearFrame() {
    if (GlideActive()) {
        grBufferClear(0, 0, 0xFFFF);
        return;
    }
    if (FrameBuffer == nullptr) return;
    // The frame is filled in 32-bit words; a width or a gap that is no multiple of four loses its remainder.
    const int32_t filled = ScreenWidth / 4 * 4;
    const int32_t stride = filled + (FramePitch - ScreenWidth) / 4 * 4;
    // Kept as it is: only the lower half is cleared.
    const int32_t rows = ScreenHeight / 2;
    uint8_t* row = FrameBuffer + static_cast<ptrdiff_t>(rows) * FramePitch;
    if (stride == filled) {
        std::memset(row, GROUND_COLOUR, static_cast<size_t>(rows) * static_cast<size_t>(filled));
        return;
    }
    for (int32_t i = 0; i < rows; i++, row += stride)
        std::memset(row, GROUND_COLOUR, static_cast<size_t>(filled));
}
