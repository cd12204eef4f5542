// Projects one point, or several at once, from camera space to the screen: float, or a vector of floats.
#pragma once

#include "render/render_tables.h"

// The result is in pixels. `inverse` is 1 / z.
template <typename Floats>
Floats ScreenX(Floats x, Floats inverse) {
    return x * ProjectionScaleX * inverse + ScreenCentreX;
}
template <typename Floats>
Floats ScreenY(Floats y, Floats inverse) {
    return -(y * ProjectionScaleY) * inverse + ScreenCentreY;
}

// Kept as it is: points nearer than this, or behind the eye, are drawn at the centre of the screen.
constexpr float NEAREST_DEPTH = 0.000001f;
