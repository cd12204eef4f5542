// Pictures of any size, made sizes that a texture can have.
#pragma once

#include "formats/image.h"

// The side of a texture, a power of two from 8 to 128, that is nearest to this one by its ratio.
int TextureSideFor(int side);

// Each pixel is the mean of what it covers, weighted by alpha; where less than half of that is there, it is a hole
// (alpha 0), else whole. In integers: the same bytes everywhere.
Image Scaled(const Image& image, int width, int height);
Image ScaledToTexture(const Image& image);  // both sides by TextureSideFor
