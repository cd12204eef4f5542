// The emulated display behind DirectDraw: nothing physical changes, the picture is scaled by the machine.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

struct ScreenMode {
    uint32_t width, height, bits;  // bits per pixel
    bool operator==(const ScreenMode&) const = default;
};

const std::vector<ScreenMode>& OfferedScreenModes();
ScreenMode CurrentScreenMode();                        // the desktop's, with 32 bits, while no program has set one
const std::optional<ScreenMode>& ProgramScreenMode();  // what the program has set
// False: the mode is not offered. A change posts WM_DISPLAYCHANGE.
bool SetScreenMode(const ScreenMode& mode);
void LeaveScreenMode();  // back to the desktop's
void CountFlip();
uint32_t FlipCount();      // since the mode was set
uint32_t SurfaceLosses();  // so far: a surface that saw fewer has lost its memory

// For tests of what the game does about other machines and other programs.
void SetScreenModes(std::vector<ScreenMode> modes);  // what EnumDisplayModes offers from now on
void LoseSurfaces();                                 // the flip chain's memory, until Restore
void ResetDisplay();                                 // desktop mode, the usual modes
