// How far the light over a part of a plane is from linear.
#pragma once

#include "mapc/geometry.h"

#include <vector>

struct LightSample {
    Vec3 place;
    double light = 0;
};

struct LightFit {
    double squares = 0;  // sum over the samples of the squared distance from the linear light that fits best
    double worst = 0;    // greatest distance
};

LightFit FitLight(const std::vector<const LightSample*>& samples, const Vec3& normal);
