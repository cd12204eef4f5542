// Vectors, planes and boxes in map space: x east, y north, z up, double precision.
#pragma once

#include "transforms/transform.h"

#include <algorithm>
#include <cmath>
#include <limits>

using Vec3 = Vector;

// Points with normal . p > dist lie in front. A brush's planes point out of it.
struct Plane {
    Vec3 normal;
    double dist = 0;

    double Distance(const Vec3& p) const { return Dot(normal, p) - dist; }
    Plane Flipped() const { return {-normal, -dist}; }
};

struct Box {
    Vec3 min{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
             std::numeric_limits<double>::max()};
    Vec3 max{-std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
             -std::numeric_limits<double>::max()};

    void Add(const Vec3& p) {
        for (int axis = 0; axis < 3; ++axis) {
            min[axis] = std::min(min[axis], p[axis]);
            max[axis] = std::max(max[axis], p[axis]);
        }
    }
    void Add(const Box& box) {
        Add(box.min);
        Add(box.max);
    }
    bool IsEmpty() const { return min.x > max.x; }
    Vec3 Centre() const { return (min + max) * 0.5; }
    Vec3 HalfExtents() const { return (max - min) * 0.5; }
    Box Grown(double by) const { return {min - Vec3{by, by, by}, max + Vec3{by, by, by}}; }
    bool Touches(const Box& other, double tolerance) const {
        for (int axis = 0; axis < 3; ++axis) {
            if (min[axis] > other.max[axis] + tolerance || other.min[axis] > max[axis] + tolerance) return false;
        }
        return true;
    }
    bool Holds(const Vec3& p, double tolerance) const {
        for (int axis = 0; axis < 3; ++axis) {
            if (p[axis] < min[axis] - tolerance || p[axis] > max[axis] + tolerance) return false;
        }
        return true;
    }
};
