#include "camera/camera.h"
#include "math/convert.h"
#include "math/world_planes.h"
#include "world/world_tables.h"

#include <cmath>

// All of it is in double precision: a float would lose the sign of a small component of the direction, and the probe
// would miss the wall.
namespace {

constexpr double EDGE_TOLERANCE = 0.1;

int SignBits(const DoubleVec3& v) {
    return (v.x < 0.0 ? 1 : 0) | (v.y < 0.0 ? 2 : 0) | (v.z < 0.0 ? 4 : 0);
}

struct Probe {
    DoubleVec3 start, direction;
    int directionSigns;
    int hits;
    double nearestSquared;  // squared distance from start to the nearest hit so far
};

bool PolygonHolds(const PolyRecord& polygon, const DoubleVec3& normal, const DoubleVec3& point) {
    for (uint32_t i = 0; i < polygon.cornerCount; ++i) {
        const DoubleVec3 corner = ToDouble(CornerPosition(polygon, i));
        const DoubleVec3 edge = ToDouble(CornerPosition(polygon, (i + 1) % polygon.cornerCount)) - corner;
        const DoubleVec3 inward = Cross(normal, edge);
        const double length = std::sqrt(Dot(inward, inward));
        if (!(length > 0.0)) continue;  // an edge without length bounds nothing
        const DoubleVec3 unit = {inward.x / length, inward.y / length, inward.z / length};
        if (Dot(unit, point - corner) + EDGE_TOLERANCE < 0.0) return false;
    }
    return true;
}

void TestPolygon(Probe& probe, int32_t index) {
    if (PolySideOfPoint(index, SideTestPoint.x, SideTestPoint.y, SideTestPoint.z) > 0) return;
    const PolyRecord& polygon = WorldGeometry.polygons[index];
    const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
    const DoubleVec3 normal = {plane.nx, plane.ny, plane.nz};
    const double approach = Dot(normal, probe.direction);
    if (approach == 0.0) return;
    const double t = -(Dot(normal, probe.start) + plane.d) / approach;
    const DoubleVec3 hit = {probe.start.x + t * probe.direction.x, probe.start.y + t * probe.direction.y,
                            probe.start.z + t * probe.direction.z};
    const DoubleVec3 way = hit - probe.start;
    if (SignBits(way) != probe.directionSigns) return;
    const double distanceSquared = Dot(way, way);
    if (probe.hits > 0 && !(distanceSquared < probe.nearestSquared)) return;
    if (!PolygonHolds(polygon, normal, hit)) return;
    probe.nearestSquared = distanceSquared;
    probe.hits++;
}

// Visits the leaves front to back from the start, and ends with the first subtree that is hit.
void WalkTree(Probe& probe, int32_t child) {
    if (child < 0) {
        const BspLeaf& leaf = WorldGeometry.leaves[~child];
        for (int32_t i = 0; i < leaf.polygonCount; ++i)
            TestPolygon(probe, leaf.firstPolygon + i);
        return;
    }
    const BspNode& node = WorldGeometry.nodes[child];
    const bool behind = NodeSideOfPoint(child) < 0;
    WalkTree(probe, behind ? node.backChild : node.frontChild);
    if (probe.hits == 0) WalkTree(probe, behind ? node.frontChild : node.backChild);
}

}  // namespace

float CameraRayDistance(const Vec3& start, const Vec3& end) {
    Probe probe = {};
    probe.start = ToDouble(start);
    probe.direction = ToDouble(end) - probe.start;
    probe.directionSigns = SignBits(probe.direction);
    // Kept as it is: sides are taken from whole numbers, and the ray does not end at `end`.
    SideTestPoint = {TruncToInt(start.x), TruncToInt(start.y), TruncToInt(start.z)};
    WalkTree(probe, 0);
    const double squared = probe.hits > 0 ? probe.nearestSquared : Dot(probe.direction, probe.direction);
    return static_cast<float>(std::sqrt(squared));
}
