// What the player sees before a level starts: attract pictures, level choice, renderer choice, on a 640 x 480 display
// of 16 bits a pixel that is open only meanwhile.
#pragma once

#include <cstdint>

// The GameMode it leaves: MODE_START with CurrentLevel and UseGlide chosen; MODE_QUIT; MODE_FRONTEND after WM_QUIT; or
// the value on entry after "Unable to initialize DirectDraw".
uint8_t RunFrontEnd();
