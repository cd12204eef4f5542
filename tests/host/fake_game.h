// A game that treats the host as the real one does: pictures that take messages between two polls, two choice screens
// that take none, then frames; left by Escape and by the left Windows key.
#pragma once

#include "host/win32.h"

// Prints "level L software|accelerator" for each level started. In the report of a frame: state: bit 0 the Up key held,
// bit 1 Space held, bit 2 the left mouse button; contact: mouse counts to the right; ticks: milliseconds since the
// frame before, 16 or, on level 8, 1600; the picture is 320 x 240 of palette colour `frame` modulo 256. Returns 3.
int FakeGame(HINSTANCE instance, HINSTANCE previous, char* commandLine, int show);
