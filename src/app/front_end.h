// What the player sees before a level starts: attract pictures, level choice, renderer choice.
#pragma once

#include <cstdint>

uint8_t RunFrontEnd();  // GameMode: MODE_START, MODE_QUIT, MODE_FRONTEND after WM_QUIT, or its value on entry when
                        // the display could not be opened
