// The accelerator: opening it in the state in which the world is drawn, and changing that state.
#pragma once

#include "render/device/device.h"

int32_t GlideBoardCount();

// 640 x 480. FatalError(-1, "grQuery failed!") or (-1, "grOpen failed!").
void OpenGlide();

// For the W key: fog, alpha test and depth writes. Without them the world is an outline drawing.
void SetFogSwitchStates(bool on);
// While the sky is drawn: light adds nothing to it, and it hides nothing.
void SetSkyStates(bool on);

// Writes the picture on the screen to 3DFX_00.raw, 3DFX_01.raw ...: red, green and blue of each pixel, upper row first,
// no header. Nothing without the accelerator, or when the file cannot be opened. No key calls it: it is for debuggers.
void SaveScreenshot();
