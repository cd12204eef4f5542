// Double-precision vectors, rotations and affine transforms of column vectors. Nothing but sqrt of the C library, so
// that results are the same everywhere.
#pragma once

#include <array>
#include <cmath>

struct Vector {
    double x = 0;
    double y = 0;
    double z = 0;

    double operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
    double& operator[](int axis) { return axis == 0 ? x : axis == 1 ? y : z; }
    bool operator==(const Vector&) const = default;
};

inline Vector operator+(const Vector& a, const Vector& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator-(const Vector& a, const Vector& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vector operator-(const Vector& a) {
    return {-a.x, -a.y, -a.z};
}
inline Vector operator*(const Vector& a, double s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline double Dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double LengthSquared(const Vector& a) {
    return Dot(a, a);
}
inline double Length(const Vector& a) {
    return std::sqrt(Dot(a, a));
}
inline Vector Cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

struct Quaternion {
    double w = 1, x = 0, y = 0, z = 0;
};

double Dot(const Quaternion& a, const Quaternion& b);
Quaternion operator*(const Quaternion& a, const Quaternion& b);
Quaternion Conjugate(const Quaternion& q);
Quaternion Negated(const Quaternion& q);
Quaternion Normalized(const Quaternion& q);  // the identity for a zero quaternion
// Along the shorter arc, by halving it.
Quaternion Slerp(Quaternion a, Quaternion b, double t);

// p' = m p, the fourth column the translation.
struct Affine {
    std::array<std::array<double, 4>, 3> m{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};

    Vector operator()(const Vector& p) const;
    Vector Column(size_t i) const { return {m[0][i], m[1][i], m[2][i]}; }
};

Affine operator*(const Affine& a, const Affine& b);  // b first
Affine FromParts(const Vector& translation, const Quaternion& rotation, const Vector& scale);
Affine Scaling(double x, double y, double z);
Affine Translation(const Vector& t);
double Determinant(const Affine& a);
Affine Inverse(const Affine& a);  // the determinant may not be 0
// The rotation nearest to keeping the first axis, then the second; w >= 0. Scale and shear are dropped.
Quaternion RotationOf(const Affine& a);
