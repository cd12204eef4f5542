// The keyboard by key position.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <string>

uint8_t ScanCodeOf(SDL_Scancode key);    // the DIK_ code; 0: the game's keyboard has no such key
std::string KeyLabel(uint8_t scanCode);  // machine/machine.h, keyLabel
