// A sky before its materials have slots: polygons around an eye at the origin, drawn one after the other.
//
// x is right, y up and z the way the player looks when the level begins. Bearings are degrees clockwise from z as seen
// from above, elevations degrees above the horizon. Corners run counter-clockwise as the eye sees them.
#pragma once

#include "transforms/transform.h"

#include <string>
#include <vector>

struct SkyCorner {
    Vector place;
    double u = 0, v = 0;  // in pictures: 0..1 is one, v runs downwards
};

struct SkyPolygon {
    std::string material;
    std::vector<SkyCorner> corners;
    bool fitted = false;  // one picture, or a part of one: its opposite side must not show at the border
    int line = 0;         // line of its layer in the description
};

using SkyShape = std::vector<SkyPolygon>;

Vector DirectionOf(double bearing, double elevation);
