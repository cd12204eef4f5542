#include "world/polygon_lanes.h"

#include "math/world_planes.h"
#include "world/world_tables.h"

PolygonLanesTable PolygonLanes;

namespace {

void AppendCorners(const PolyRecord& polygon) {
    for (int i = 0; i < polygon.cornerCount; i += LANE_COUNT) {
        CornerGroup group;
        for (int lane = 0; lane < LANE_COUNT; ++lane) {
            const auto corner = static_cast<uint32_t>(OrFirst(i + lane, polygon.cornerCount));
            const Vec3 position = CornerPosition(polygon, corner);
            group.x[lane] = position.x;
            group.y[lane] = position.y;
            group.z[lane] = position.z;
        }
        PolygonLanes.cornerGroups.push_back(group);
    }
}

}  // namespace

void GeneratePolygonLanes() {
    const uint32_t count = WorldGeometry.file.polygons;
    PolygonLanes = {};
    for (std::vector<float>* const numbers : {&PolygonLanes.nx, &PolygonLanes.ny, &PolygonLanes.nz, &PolygonLanes.d})
        numbers->resize(count + LANE_COUNT - 1);
    for (uint32_t p = 0; p < count; ++p) {
        const PolyRecord& polygon = WorldGeometry.polygons[p];
        const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
        PolygonLanes.nx[p] = plane.nx;
        PolygonLanes.ny[p] = plane.ny;
        PolygonLanes.nz[p] = plane.nz;
        PolygonLanes.d[p] = plane.d;
        PolygonLanes.firstGroup.push_back(static_cast<uint32_t>(PolygonLanes.cornerGroups.size()));
        AppendCorners(polygon);
    }
}
