// The game without its loop: a level is started, and frames are drawn on demand. For tools and benchmarks that are made
// of the game itself.
#pragma once

#include "formats/image.h"

#include <cstdint>

// Starts a level, 1 to 8, once in a process, which runs with --headless. The software renderer draws into memory of its
// own. What is wrong with the level's files is a FatalError.
void StartLevel(int32_t level, bool accelerator);

// Draws what the camera sees. Nothing moves.
void DrawFrame(bool withCharacter);

// The frame just drawn, 320 x 240 of the software renderer or 640 x 480 of the accelerator, which shows it first.
Image TakePicture();
