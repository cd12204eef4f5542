#include "math/world_planes.h"

#include "memory/fatal.h"
#include "memory/pool.h"
#include "records/table_facts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

IntVec3 SideTestPoint;

namespace {

void AddPlaneNormalToCorners(const PolyRecord& polygon, uint32_t* uses) {
    const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
    for (uint32_t corner = 0; corner < polygon.cornerCount; ++corner) {
        const uint32_t point = WorldGeometry.polyVertices[polygon.firstVertex + corner].point;
        Vec3& normal = WorldGeometry.points[point].normal;
        normal.x += plane.nx;
        normal.y += plane.ny;
        normal.z += plane.nz;
        uses[point]++;
    }
}

}  // namespace

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
        static_cast<uint32_t*>(PoolMalloc(std::max(NORMAL_COUNTERS_BYTES_MIN, pointCount * NORMAL_COUNTER_BYTES)));
    if (!uses) FatalError(1, "Generate Vert Normals - Mem Error");
    std::printf("Generating Vertex Normals...\n");

    for (uint32_t i = 0; i < pointCount; ++i) {
        WorldGeometry.points[i].normal = {};
        uses[i] = 0;
    }
    for (uint32_t i = 0; i < WorldGeometry.used.polygons; ++i)
        AddPlaneNormalToCorners(WorldGeometry.polygons[i], uses);
    for (uint32_t i = 0; i < pointCount; ++i) {
        if (uses[i] == 0) continue;
        const float count = static_cast<float>(uses[i]);
        Vec3& normal = WorldGeometry.points[i].normal;
        normal = {normal.x / count, normal.y / count, normal.z / count};
    }
    PoolFree(uses);
}
