#include "math/quaternions.h"

#include "math/trig.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

void QuatFromAxisAngle(const AxisAngle& a, Quat& out) {
    const double half = a.angle / 2.0;
    const double s = Sin(half);
    const double c = Cos(half);
    if (c >= 0.0) {
        out = {c, a.x * s, a.y * s, a.z * s};
    } else {
        std::printf("angle was >180! (%f)\n", a.angle * 180.0 / 3.141592653589793);
        out = {-c, -a.x * s, -a.y * s, -a.z * s};
    }
}

void QuatToAxisAngle(Quat& q, AxisAngle& out) {
    std::printf("quat %f,%f,%f,%f\n", q.w, q.x, q.y, q.z);
    double half = 0.0;
    double s = 0.0;
    if (std::fabs(q.w) > 1.0) {
        std::printf("|s| was > 1.0!\n");
        q = {1.0, 0.0, 0.0, 0.0};
    } else {
        half = ArcCos(q.w);
        s = Sin(half);
    }
    if (s == 0.0) {
        out = {0.0, 1.0, 0.0, 0.0};
    } else {
        out = {2.0 * half, q.x / s, q.y / s, q.z / s};
    }
}

void QuatMultiply(const Quat& a, const Quat& b, Quat& out) {
    out.w = a.w * b.w - (a.x * b.x + a.y * b.y + a.z * b.z);
    out.x = a.w * b.x + b.w * a.x + a.y * b.z - a.z * b.y;
    out.y = a.w * b.y + b.w * a.y + a.z * b.x - a.x * b.z;
    out.z = a.w * b.z + b.w * a.z + a.x * b.y - a.y * b.x;
}

void QuatMultiplyConj(const Quat& a, const Quat& b, Quat& out) {
    QuatMultiply(a, {b.w, -b.x, -b.y, -b.z}, out);
}

void QuatNormalize(Quat& q) {
    const double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    if (length == 0.0) return;
    q = {q.w / length, q.x / length, q.y / length, q.z / length};
}

void QuatToMatrix(const Quat& q, double out[9]) {
    const auto [w, x, y, z] = q;
    out[0] = w * w + x * x - y * y - z * z;
    out[1] = 2.0 * (x * y + w * z);
    out[2] = 2.0 * (x * z - w * y);
    out[3] = 2.0 * (x * y - w * z);
    out[4] = w * w - x * x + y * y - z * z;
    out[5] = 2.0 * (y * z + w * x);
    out[6] = 2.0 * (x * z + w * y);
    out[7] = 2.0 * (y * z - w * x);
    out[8] = w * w - x * x - y * y + z * z;
}

void QuatToMatrixColumn(const Quat& q, double out[9]) {
    QuatToMatrix(q, out);
    std::swap(out[1], out[3]);
    std::swap(out[2], out[6]);
    std::swap(out[5], out[7]);
}

void MatrixToQuat(const double r[9], Quat& out) {
    // Rounding makes a radicand slightly negative at exact half turns.
    const auto root = [](double radicand) { return std::sqrt(std::max(0.0, radicand)); };
    const double size[4] = {root(r[0] + r[4] + r[8] + 1.0), root(r[0] - r[4] - r[8] + 1.0),
                            root(-r[0] + r[4] - r[8] + 1.0), root(-r[0] - r[4] + r[8] + 1.0)};
    int largest = 0;
    for (int i = 1; i < 4; ++i) {
        if (size[i] > size[largest]) largest = i;
    }
    const double div = 2.0 * size[largest];
    std::printf("i = %d div = %f \n", largest, div);
    switch (largest) {
    case 0: out = {div / 4.0, (r[5] - r[7]) / div, (r[6] - r[2]) / div, (r[1] - r[3]) / div}; break;
    case 1: out = {(r[5] - r[7]) / div, div / 4.0, (r[3] + r[1]) / div, (r[6] + r[2]) / div}; break;
    case 2: out = {(r[6] - r[2]) / div, (r[3] + r[1]) / div, div / 4.0, (r[7] + r[5]) / div}; break;
    default: out = {(r[1] - r[3]) / div, (r[6] + r[2]) / div, (r[7] + r[5]) / div, div / 4.0}; break;
    }
    if (out.w < 0.0) out = {-out.w, -out.x, -out.y, -out.z};
}

void QuatRotateVector(const Quat& q, const double v[3], double out[3]) {
    double m[9];
    QuatToMatrixColumn(q, m);
    for (int i = 0; i < 3; ++i)
        out[i] = m[3 * i] * v[0] + m[3 * i + 1] * v[1] + m[3 * i + 2] * v[2];
}

void QuatSlerp(const Quat& a, const Quat& b, Quat& out, double t) {
    const double dot = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
    t = std::clamp(t, 0.0, 1.0);
    const double omega = dot > -1.0 && dot < 1.0 ? ArcCos(dot) : 0.0;
    double ka = 1.0 - t;
    double kb = t;
    if (omega != 0.0) {
        const double k = 1.0 / Sin(omega);
        kb = Sin(t * omega) * k;
        ka = Sin((1.0 - t) * omega) * k;
    }
    out = {ka * a.w + kb * b.w, ka * a.x + kb * b.x, ka * a.y + kb * b.y, ka * a.z + kb * b.z};
}
