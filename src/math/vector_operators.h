// Sums, products and conversions of vectors, for floats, doubles and whole numbers. Every product is summed in the
// order x, y, z, so that all users get the same bits.
#pragma once

#include "math/convert.h"
#include "records/vec3.h"

#include <concepts>
#include <cstdint>

struct IntVec3 {
    int32_t x, y, z;
};

struct DoubleVec3 {
    double x, y, z;
};

template <typename V>
concept RealVector = std::same_as<V, Vec3> || std::same_as<V, DoubleVec3>;

template <RealVector V>
V operator+(const V& a, const V& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

template <RealVector V>
V operator-(const V& a, const V& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

template <RealVector V>
auto Dot(const V& a, const V& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template <RealVector V>
V Cross(const V& a, const V& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vec3 ToFloat(const IntVec3& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

inline DoubleVec3 ToDouble(const Vec3& v) {
    return {double{v.x}, double{v.y}, double{v.z}};
}

inline IntVec3 Truncate(const Vec3& v) {
    return {TruncToInt(double{v.x}), TruncToInt(double{v.y}), TruncToInt(double{v.z})};
}
