// The keyboard by key position. X stands in for right Ctrl.
#pragma once

#include <SDL.h>

#include <cstdint>

uint8_t ScanCodeOf(SDL_Scancode key);  // the DIK_ code; 0: the game's keyboard has no such key
