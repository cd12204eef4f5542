// The accelerator's set-up state and its shut-down, which memory/ needs below the rest of the renderer.
#pragma once

#include <cstdint>

// Set to 1 together by InitGraphics, cleared by SystemInit and SystemShutdown.
extern int32_t GlideInitialised;
extern int32_t GlideHardwareReady;
extern int32_t GlideWindowOpen;

inline bool GlideActive() {
    return GlideWindowOpen != 0;
}

void CloseGlide();  // nothing when the accelerator was not set up
