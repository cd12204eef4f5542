// Projects one point, or several at once, from camera space to the screen: float, or a vector of floats.
#pragma once

#include "render/raster.h"
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

// Four points of the software renderer, in 16.16 pixels that are not cut to whole numbers yet.
struct ProjectedLanes {
    Float4 x, y, inverseDepth;
};
inline ProjectedLanes ProjectLanes(Float4 x, Float4 y, Float4 z) {
    const Float4 inverse = z < NEAREST_DEPTH ? Float4{} : 1.0f / z;
    return {ScreenX(x, inverse) * 65536.0f, ScreenY(y, inverse) * 65536.0f, inverse};
}
