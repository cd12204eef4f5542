// The emulated display behind DirectDraw: nothing physical changes, the picture is scaled by the machine.
#pragma once

#include <cstdint>
#include <vector>

struct DisplayMode {
    uint32_t width, height, bits;  // bits per pixel
};

DisplayMode CurrentDisplayMode();  // the desktop's, with 32 bits, while no program has set one
uint32_t FlipCount();              // since the mode was set

// For tests of what the game does about other machines and other programs.
void SetDisplayModes(std::vector<DisplayMode> modes);  // what EnumDisplayModes offers from now on
void LoseSurfaces();                                   // the flip chain's memory, until Restore
void ResetDisplay();                                   // desktop mode, the usual modes
