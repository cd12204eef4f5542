// Mixing of colours in whole numbers.
#pragma once

#include "formats/image.h"
#include "picc/lettering.h"

struct Rectangle {
    int left, top, right, bottom;  // right and bottom lie outside
};

Rgba MixColours(const Rgba& a, const Rgba& b, int part);  // part 0..255: 0 gives a
Rgba Scaled(const Rgba& colour, int part);                // part 256: unchanged; brighter colours stop at 255
// Even steps through a list of colours; place 0..length-1.
Rgba Ramp(const std::vector<Rgba>& colours, int place, int length);
void Blend(Image& image, int x, int y, const Rgba& colour, int part);  // ignored outside
// Mixes colours that run from the top of the rectangle to its bottom into the pixels that `shape` covers. part 0..255.
void BlendShape(Image& image, const Coverage& shape, const Rectangle& area, const std::vector<Rgba>& colours, int part,
                int dx = 0, int dy = 0);
// A rectangle with round corners; `inside` shrinks it on all sides.
Coverage RoundedBox(int width, int height, const Rectangle& box, int radius, int inside = 0);
Image Shrink(const Image& image, int factor);  // averages; columns and rows that do not fill a whole pixel are left out
