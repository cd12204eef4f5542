#include "math/vectors.h"

#include "camera/camera_tables.h"
#include "math/convert.h"
#include "math/trig.h"
#include "memory/fatal.h"
#include "memory/pool.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

Vec3 RotatedVector;
IntVec3 RotatedIntVector;
IntVec3 SideTestPoint;

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

void AddPlaneNormalToCorners(const PolyRecord& polygon, uint32_t* uses) {
    const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
    for (uint32_t corner = 0; corner < polygon.cornerCount; corner++) {
        const uint32_t point = WorldGeometry.polyVertices[polygon.firstVertex + corner].point;
        Vec3& normal = WorldGeometry.points[point].normal;
        normal.x += plane.nx;
        normal.y += plane.ny;
        normal.z += plane.nz;
        uses[point]++;
    }
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
    for (int i = 3; i < 6; i++)
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

int32_t NodeSideOfPoint(int32_t node) {
    return SideOfPlane(WorldGeometry.nodes[node].plane, ToFloat(SideTestPoint));
}

int32_t PolySideOfPoint(int32_t poly, int32_t x, int32_t y, int32_t z) {
    return SideOfPlane(WorldGeometry.polygons[poly].plane, ToFloat(IntVec3{x, y, z}));
}

void ComputePolyPlane(int32_t poly) {
    const PolyRecord& polygon = WorldGeometry.polygons[poly];
    const Vec3 p0 = CornerPosition(polygon, 0);
    const DoubleVec3 first = ToDouble(p0);
    const DoubleVec3 normal =
        Cross(ToDouble(CornerPosition(polygon, 1)) - first, ToDouble(CornerPosition(polygon, 2)) - first);
    const double length = std::sqrt(Dot(normal, normal));

    PlaneRecord plane = {};
    if (length > 0.0) {
        plane.nx = static_cast<float>(normal.x / length);
        plane.ny = static_cast<float>(normal.y / length);
        plane.nz = static_cast<float>(normal.z / length);
        // The stored, rounded normal is taken, so that the first corner lies on the plane as the side tests see it.
        plane.d = -(p0.x * plane.nx + p0.y * plane.ny + p0.z * plane.nz);
    }
    WorldGeometry.planes[polygon.plane] = plane;
}

void GenerateVertexNormals() {
    const uint32_t pointCount = WorldGeometry.used.points;
    auto* uses =
        static_cast<uint32_t*>(PoolMalloc(std::max(NORMAL_COUNTERS_MIN_BYTES, pointCount * NORMAL_COUNTER_BYTES)));
    if (!uses) FatalError(1, "Generate Vert Normals - Mem Error");
    std::printf("Generating Vertex Normals...\n");

    for (uint32_t i = 0; i < pointCount; i++) {
        WorldGeometry.points[i].normal = {};
        uses[i] = 0;
    }
    for (uint32_t i = 0; i < WorldGeometry.used.polygons; i++)
        AddPlaneNormalToCorners(WorldGeometry.polygons[i], uses);
    for (uint32_t i = 0; i < pointCount; i++) {
        if (uses[i] == 0) continue;
        const float count = static_cast<float>(uses[i]);
        Vec3& normal = WorldGeometry.points[i].normal;
        normal = {normal.x / count, normal.y / count, normal.z / count};
    }
    PoolFree(uses);
}

void TransformIdentity(Transform& t) {
    t = {{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {0.0, 0.0, 0.0}};
}

void TransformConcat(const Transform& a, const Transform& b, Transform& out) {
    for (int row = 0; row < 3; row++) {
        for (int column = 0; column < 3; column++) {
            out.r[row * 3 + column] =
                b.r[row * 3] * a.r[column] + b.r[row * 3 + 1] * a.r[3 + column] + b.r[row * 3 + 2] * a.r[6 + column];
        }
        out.t[row] = b.t[row];
    }
    RotateDVector(out.t, a.r);
    for (int i = 0; i < 3; i++)
        out.t[i] += a.t[i];
}

void RotateDVector(double v[3], const double r[9]) {
    const double x = v[0], y = v[1], z = v[2];
    for (int i = 0; i < 3; i++)
        v[i] = x * r[i] + y * r[3 + i] + z * r[6 + i];
}
