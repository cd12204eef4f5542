#include "transforms/transform.h"

double Dot(const Quaternion& a, const Quaternion& b) {
    return a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
}

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + b.w * a.x + a.y * b.z - a.z * b.y,
            a.w * b.y + b.w * a.y + a.z * b.x - a.x * b.z, a.w * b.z + b.w * a.z + a.x * b.y - a.y * b.x};
}

Quaternion Conjugate(const Quaternion& q) {
    return {q.w, -q.x, -q.y, -q.z};
}

Quaternion Negated(const Quaternion& q) {
    return {-q.w, -q.x, -q.y, -q.z};
}

Quaternion Normalized(const Quaternion& q) {
    const double length = std::sqrt(Dot(q, q));
    if (length == 0) return {};
    return {q.w / length, q.x / length, q.y / length, q.z / length};
}

Quaternion Slerp(Quaternion a, Quaternion b, double t) {
    constexpr int HALVINGS = 20;  // leaves an arc so short that its chord is as good
    if (Dot(a, b) < 0) b = Negated(b);
    for (int i = 0; i < HALVINGS; ++i) {
        const Quaternion middle = Normalized({a.w + b.w, a.x + b.x, a.y + b.y, a.z + b.z});
        t *= 2;
        if (t < 1) {
            b = middle;
        } else {
            a = middle;
            t -= 1;
        }
    }
    const double s = 1 - t;
    return Normalized({s * a.w + t * b.w, s * a.x + t * b.x, s * a.y + t * b.y, s * a.z + t * b.z});
}

Vector Affine::operator()(const Vector& p) const {
    const auto row = [&](const std::array<double, 4>& r) { return r[0] * p.x + r[1] * p.y + r[2] * p.z + r[3]; };
    return {row(m[0]), row(m[1]), row(m[2])};
}

Affine operator*(const Affine& a, const Affine& b) {
    Affine product;
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            product.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j];
            if (j == 3) product.m[i][j] += a.m[i][3];
        }
    }
    return product;
}

Affine FromParts(const Vector& translation, const Quaternion& rotation, const Vector& scale) {
    const auto& [w, x, y, z] = rotation;
    Affine a;
    a.m[0] = {(1 - 2 * (y * y + z * z)) * scale.x, 2 * (x * y - w * z) * scale.y, 2 * (x * z + w * y) * scale.z,
              translation.x};
    a.m[1] = {2 * (x * y + w * z) * scale.x, (1 - 2 * (x * x + z * z)) * scale.y, 2 * (y * z - w * x) * scale.z,
              translation.y};
    a.m[2] = {2 * (x * z - w * y) * scale.x, 2 * (y * z + w * x) * scale.y, (1 - 2 * (x * x + y * y)) * scale.z,
              translation.z};
    return a;
}

Affine Scaling(double x, double y, double z) {
    return FromParts({}, {}, {x, y, z});
}

Affine Translation(const Vector& t) {
    return FromParts(t, {}, {1, 1, 1});
}

double Determinant(const Affine& a) {
    return Dot(a.Column(0), Cross(a.Column(1), a.Column(2)));
}

Affine Inverse(const Affine& a) {
    const Vector c0 = a.Column(0), c1 = a.Column(1), c2 = a.Column(2);
    const double scale = 1 / Determinant(a);
    const Vector rows[3] = {Cross(c1, c2) * scale, Cross(c2, c0) * scale, Cross(c0, c1) * scale};
    Affine inverse;
    for (size_t i = 0; i < 3; ++i)
        inverse.m[i] = {rows[i].x, rows[i].y, rows[i].z, -Dot(rows[i], a.Column(3))};
    return inverse;
}

Quaternion RotationOf(const Affine& a) {
    const Vector x = a.Column(0) * (1 / Length(a.Column(0)));
    Vector y = a.Column(1) - x * Dot(x, a.Column(1));
    y = y * (1 / Length(y));
    const Vector z = Cross(x, y);
    Quaternion q;
    const double trace = x.x + y.y + z.z;
    if (trace >= x.x && trace >= y.y && trace >= z.z) {
        q = {1 + trace, y.z - z.y, z.x - x.z, x.y - y.x};
    } else if (x.x >= y.y && x.x >= z.z) {
        q = {y.z - z.y, 1 + x.x - y.y - z.z, y.x + x.y, z.x + x.z};
    } else if (y.y >= z.z) {
        q = {z.x - x.z, y.x + x.y, 1 - x.x + y.y - z.z, z.y + y.z};
    } else {
        q = {x.y - y.x, z.x + x.z, z.y + y.z, 1 - x.x - y.y + z.z};
    }
    return Normalized(q.w < 0 ? Negated(q) : q);
}
