// A straight hall seen in perspective: a background with depth from four materials.
#pragma once

#include "formats/image.h"

struct HallView {
    const Image* left;
    const Image* right;
    const Image* floor;
    const Image* ceiling;
    Rgba haze;               // colour of the far end
    float width, height;     // units; two to a texel
    float eye;               // height of the eye above the floor
    int vanishing, horizon;  // pixel at which the hall vanishes
    float sight;             // distance at which half of a colour has become haze
    float brightness;
};

void PaintHall(Image& image, const HallView& hall);
