// The settings screen: drawn over the game's picture, on F10, or on the right shoulder button of a controller. The game
// and its clock stand still meanwhile, so that it goes on exactly where it was.
#pragma once

#include <cstdint>

// At each poll that reads the keyboard: KEY_COUNT bytes. Opens the screen when its key has gone down, returns when the
// player has closed it, and lets go of all keys then. Does nothing on a machine that shows no overlay.
void OfferSettings(uint8_t* keys);
