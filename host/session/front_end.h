// The screens before a level starts, as the host sees them, and the keys it presses there: those that --level and
// --renderer ask for, and those that digits, and arrows with Enter, stand for. So a controller, and a keyboard without
// F keys, reach every level and renderer.
#pragma once

#include "machine/options.h"

#include <cstdint>

bool InFrontEnd();  // its display mode is set: game frames stand still

void StartFrontEndKeys(const Options& options);
void WatchFrontEnd();  // at each keyboard poll
// At each poll that reads the keyboard, KEY_COUNT bytes. --level and --renderer press each key once, and not at a
// screen's first poll. Where there is a choice, a digit chooses at once; an arrow or Enter shows what is chosen, arrows
// change it, Enter takes it. Enter leads on from the attract pictures, too.
void AddFrontEndKeys(uint8_t* keys);
