// The OpenGL 3.3 core context in which everything is drawn: the game window's, or without one that of a window which
// is never shown.
#pragma once

#include "boards/gpu/gl.h"

#include <string>

// Sets the attributes of the context that SDL makes for the next window.
void AskForGlContext();

// Makes the functions of gl.h usable on this thread, as often as wanted; the hidden window stays until the program
// ends. False: `error` says why there is no context.
bool EnterGl(std::string& error);

// False where OpenGL could only be drawn by the processor. Asks the system alone, and loads no driver: those that draw
// by the processor take tens of megabytes.
bool MayHaveGraphicsCard();

bool GlIsSoftware();  // the processor draws, not a graphics card
