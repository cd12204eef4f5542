// The keyboard by key position.
#pragma once

#include <SDL.h>

#include <cstdint>

uint8_t ScanCodeOf(SDL_Scancode key);  // as the game's keyboard counts; 0: that keyboard has no such key
