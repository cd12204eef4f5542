// Vectors, planes and boxes in map space: x east, y north, z up, double precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

struct Vec3 {
    double x = 0;
    double y = 0;
    double z = 0;

    double operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
    double& operator[](int axis) { return axis == 0 ? x : axis == 1 ? y : z; }
    bool operator==(const Vec3&) const = default;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator-(const Vec3& a) {
    return {-a.x, -a.y, -a.z};
}
inline Vec3 operator*(const Vec3& a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline double Dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double LengthSquared(const Vec3& a) {
    return Dot(a, a);
}
inline double Length(const Vec3& a) {
    return std::sqrt(Dot(a, a));
}

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
