// What the game has drawn, as a picture: for tools that are made of the game itself.
#pragma once

#include "formats/image.h"

// The frame just drawn, 320 x 240 of the software renderer or 640 x 480 of the accelerator, which shows it first.
Image TakePicture();
