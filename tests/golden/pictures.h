// Pictures as tests compare them.
#pragma once

#include "formats/image.h"

// Pixels of which a channel differs by more than `steps`; SIZE_MAX: the sizes differ.
size_t DifferingPixels(const Image& a, const Image& b, int steps);
Image Halved(const Image& picture);  // the means of two by two
