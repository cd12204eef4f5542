// What the player sees before a level starts: attract pictures, level choice, renderer choice, on a 640 x 480 display
// of 16 bits a pixel that is open only meanwhile.
#pragma once

#include "host/dinput.h"

#include <cstdint>

constexpr uint32_t FRONT_END_BITS = 16;  // bits a pixel of its display

constexpr uint8_t START_KEY = DIK_SPACE;  // leads from the attract pictures to the choice of a level
constexpr uint8_t SOFTWARE_KEY = DIK_F11;
constexpr uint8_t ACCELERATOR_KEY = DIK_F12;

// The GameMode it leaves: MODE_START with CurrentLevel and UseGlide chosen; MODE_QUIT; MODE_FRONTEND after WM_QUIT; or
// the value on entry after "Unable to initialize DirectDraw".
uint8_t RunFrontEnd();
