#include "math/vectors.h"

#include "math/trig.h"
#include "render/render_tables.h"

Vec3 RotatedVector;
IntVec3 RotatedIntVector;

namespace {

constexpr double PI = 3.141592653589793;

struct SinCos {
    float sin, cos;
};

SinCos SinCosOfDegrees(float degrees) {
    const double radians = degrees * PI / 180.0;
    return {static_cast<float>(Sin(radians)), static_cast<float>(Cos(radians))};
}

Vec3 Multiply(const Matrix3& matrix, float x, float y, float z) {
    const float* m = matrix.m;
    return {m[0] * x + m[1] * y + m[2] * z, m[3] * x + m[4] * y + m[5] * z, m[6] * x + m[7] * y + m[8] * z};
}

Vec3 MultiplyTransposed(const Matrix3& matrix, float x, float y, float z) {
    const float* m = matrix.m;
    return {m[0] * x + m[3] * y + m[6] * z, m[1] * x + m[4] * y + m[7] * z, m[2] * x + m[5] * y + m[8] * z};
}

}  // namespace

void RotationFromAngles(float ax, float ay, float az, Matrix3& out) {
    const auto [sx, cx] = SinCosOfDegrees(ax);
    const auto [sy, cy] = SinCosOfDegrees(ay);
    const auto [sz, cz] = SinCosOfDegrees(az);
    out.m[0] = cz * cy - sz * sy * sx;
    out.m[1] = -cx * sz;
    out.m[2] = sz * cy * sx + cz * sy;
    out.m[3] = cz * sy * sx + sz * cy;
    out.m[4] = cz * cx;
    out.m[5] = sz * sy - cz * cy * sx;
    out.m[6] = -cx * sy;
    out.m[7] = sx;
    out.m[8] = cx * cy;
}

void ViewRotationFromAngles(float ax, float ay, float az, Matrix3& out) {
    RotationFromAngles(ax, ay, az, out);
    for (int i = 3; i < 6; ++i)
        out.m[i] *= ScreenAspect;
}

void RotateVector(float x, float y, float z, const Matrix3& m) {
    RotatedVector = Multiply(m, x, y, z);
}

void RotateVectorT(float x, float y, float z, const Matrix3& m) {
    RotatedVector = MultiplyTransposed(m, x, y, z);
}

void RotateIntVector(int32_t x, int32_t y, int32_t z, const Matrix3& m) {
    const Vec3 v = ToFloat(IntVec3{x, y, z});
    RotatedIntVector = Truncate(Multiply(m, v.x, v.y, v.z));
}

void RotateIntVectorT(int32_t x, int32_t y, int32_t z, const Matrix3& m) {
    const Vec3 v = ToFloat(IntVec3{x, y, z});
    RotatedIntVector = Truncate(MultiplyTransposed(m, v.x, v.y, v.z));
}

void TransformIdentity(Transform& t) {
    t = {{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {0.0, 0.0, 0.0}};
}

void TransformConcat(const Transform& a, const Transform& b, Transform& out) {
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            out.r[row * 3 + column] =
                b.r[row * 3] * a.r[column] + b.r[row * 3 + 1] * a.r[3 + column] + b.r[row * 3 + 2] * a.r[6 + column];
        }
        out.t[row] = b.t[row];
    }
    RotateDVector(out.t, a.r);
    for (int i = 0; i < 3; ++i)
        out.t[i] += a.t[i];
}

void RotateDVector(double v[3], const double r[9]) {
    const double x = v[0], y = v[1], z = v[2];
    for (int i = 0; i < 3; ++i)
        v[i] = x * r[i] + y * r[3 + i] + z * r[6 + i];
}
