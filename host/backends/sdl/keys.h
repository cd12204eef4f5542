// The keyboard by key position. X stands in for right Ctrl.
#pragma once

#include <SDL.h>

#include <cstdint>

uint8_t ScanCodeOf(SDL_Scancode key);  // as the game's keyboard counts; 0: that keyboard has no such key
