// The machine with a window: SDL for window, keyboard, mouse, controllers, sound and clock. Presents through
// OpenGL 3.3, or through plain window memory where no context can be made. Never changes the desktop's video mode.
#pragma once

#include "machine/machine.h"

extern const Machine SdlMachine;
