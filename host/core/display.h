// The emulated display behind DirectDraw: nothing physical changes, the picture is scaled by the machine.
#pragma once

#include <cstdint>
#include <vector>

struct ScreenMode {
    uint32_t width, height, bits;  // bits per pixel
};

ScreenMode CurrentScreenMode();  // the desktop's, with 32 bits, while no program has set one
uint32_t FlipCount();            // since the mode was set

// For tests of what the game does about other machines and other programs.
void SetScreenModes(std::vector<ScreenMode> modes);  // what EnumDisplayModes offers from now on
void LoseSurfaces();                                 // the flip chain's memory, until Restore
void ResetDisplay();                                 // desktop mode, the usual modes
