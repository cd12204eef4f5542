#include "interfaces/display.h"

#include "input/message_queue.h"
#include "machine/machine.h"

#include <algorithm>
#include <utility>

namespace {

// Ascending, 8 bits first: a program that takes the first fit finds the small modes exactly.
const std::vector<ScreenMode> USUAL_MODES = {{320, 240, 8}, {512, 384, 8},  {640, 480, 8},
                                             {800, 600, 8}, {640, 480, 16}, {800, 600, 16}};

std::vector<ScreenMode> modes = USUAL_MODES;
std::optional<ScreenMode> currentMode;  // none: the desktop's
uint32_t flips = 0;
uint32_t surfaceLosses = 0;

void AnnounceMode() {
    const ScreenMode mode = CurrentScreenMode();
    PostToWindow(WM_DISPLAYCHANGE, mode.bits, static_cast<LPARAM>(mode.height << 16 | mode.width));
}

}  // namespace

const std::vector<ScreenMode>& OfferedScreenModes() {
    return modes;
}

ScreenMode CurrentScreenMode() {
    if (currentMode) return *currentMode;
    int width = 0;
    int height = 0;
    CurrentMachine->desktopSize(&width, &height);
    return {static_cast<uint32_t>(width), static_cast<uint32_t>(height), 32};
}

const std::optional<ScreenMode>& ProgramScreenMode() {
    return currentMode;
}

bool SetScreenMode(const ScreenMode& mode) {
    if (std::find(modes.begin(), modes.end(), mode) == modes.end()) return false;
    currentMode = mode;
    flips = 0;
    AnnounceMode();
    return true;
}

void LeaveScreenMode() {
    if (!currentMode) return;
    currentMode.reset();
    AnnounceMode();
}

void CountFlip() {
    ++flips;
}

uint32_t FlipCount() {
    return flips;
}

uint32_t SurfaceLosses() {
    return surfaceLosses;
}

void SetScreenModes(std::vector<ScreenMode> offered) {
    modes = std::move(offered);
}

void LoseSurfaces() {
    ++surfaceLosses;
}

void ResetDisplay() {
    modes = USUAL_MODES;
    currentMode.reset();
    flips = 0;
}
