// The keyboard by key position.
#pragma once

#include <SDL.h>

#include <cstdint>

uint8_t ScanCodeOf(SDL_Scancode key);  // as the game's keyboard counts; 0: that keyboard has no such key
// The key of the game that `key` also stands for, because many keyboards lack it: X is the right Ctrl key. 0: none.
uint8_t AlternateCodeOf(SDL_Scancode key);
