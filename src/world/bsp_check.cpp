#include "world/bsp_check.h"

#include "records/table_facts.h"
#include "world/world_tables.h"

#include <cmath>
#include <vector>

namespace {

bool IsFinite(Vec3 v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool ChildIsValid(int16_t child) {
    return child >= 0 ? static_cast<uint32_t>(child) < WorldGeometry.nodeCount
                      : static_cast<uint32_t>(~child) < WorldGeometry.leafCount;
}

bool NodesAreValid() {
    for (uint32_t i = 0; i < WorldGeometry.nodeCount; ++i) {
        const BspNode& node = WorldGeometry.nodes[i];
        if (!ChildIsValid(node.frontChild) || !ChildIsValid(node.backChild)) return false;
        if (node.plane >= WorldGeometry.file.planes) return false;
        if (!IsFinite(node.centre) || !IsFinite(node.halfExtents)) return false;
    }
    return true;
}

bool LeavesAreValid() {
    for (uint32_t i = 0; i < WorldGeometry.leafCount; ++i) {
        const BspLeaf& leaf = WorldGeometry.leaves[i];
        if (uint32_t{leaf.firstPolygon} + leaf.polygonCount > WorldGeometry.file.polygons) return false;
        if (!IsFinite(leaf.centre) || !IsFinite(leaf.halfExtents)) return false;
    }
    return true;
}

bool PlanesAreValid() {
    for (uint32_t i = 0; i < WorldGeometry.file.planes; ++i) {
        const PlaneRecord& plane = WorldGeometry.planes[i];
        if (!IsFinite({plane.nx, plane.ny, plane.nz}) || !std::isfinite(plane.d)) return false;
    }
    return true;
}

bool PolygonsAreValid() {
    for (uint32_t i = 0; i < WorldGeometry.file.polygons; ++i) {
        const PolyRecord& polygon = WorldGeometry.polygons[i];
        if (polygon.cornerCount < BSP_CORNERS_MIN || polygon.cornerCount > BSP_CORNERS_MAX) return false;
        if (uint32_t{polygon.firstVertex} + polygon.cornerCount > WorldGeometry.file.polyVertices) return false;
        if (polygon.plane >= WorldGeometry.file.planes) return false;
    }
    return true;
}

bool PointsAndVerticesAreValid() {
    for (uint32_t i = 0; i < WorldGeometry.file.points; ++i) {
        if (!IsFinite(WorldGeometry.points[i].position)) return false;
    }
    for (uint32_t i = 0; i < WorldGeometry.file.polyVertices; ++i) {
        const PolyVertex& vertex = WorldGeometry.polyVertices[i];
        if (vertex.point >= WorldGeometry.file.points) return false;
        if (!IsFinite({vertex.u, vertex.v, vertex.intensity})) return false;
    }
    return true;
}

// The walks over the tree are recursive: a node reached twice would make them endless or exponential, and a deep
// tree would exhaust the stack. Kept as it is: a leaf may hang in several places, and is measured and drawn at each of
// them: many polygons in many places would take hours. Nodes that the root does not reach are harmless.
bool NodesFormATree() {
    struct Visit {
        int16_t node;
        int depth;
    };
    uint32_t polygons = 0;
    std::vector<bool> reached(WorldGeometry.nodeCount);
    std::vector<Visit> pending = {{0, 1}};
    while (!pending.empty()) {
        const Visit visit = pending.back();
        pending.pop_back();
        if (visit.depth > BSP_DEPTH_MAX || reached[static_cast<size_t>(visit.node)]) return false;
        reached[static_cast<size_t>(visit.node)] = true;
        const BspNode& node = WorldGeometry.nodes[visit.node];
        for (const int16_t child : {node.frontChild, node.backChild}) {
            if (child >= 0)
                pending.push_back({child, visit.depth + 1});
            else
                polygons += WorldGeometry.leaves[~child].polygonCount;
        }
        if (polygons > BSP_LEAF_POLYGONS_MAX) return false;
    }
    return true;
}

}  // namespace

bool BspCountsAreValid() {
    const GeometryCounts& file = WorldGeometry.file;
    return WorldGeometry.nodeCount >= 1 && WorldGeometry.nodeCount <= BSP_NODES_MAX && WorldGeometry.leafCount >= 1 &&
           WorldGeometry.leafCount <= BSP_LEAVES_MAX && file.planes <= INDICES_MAX - SPARE_PLANES &&
           file.polygons <= POLYGON_NUMBERS_MAX - SPARE_POLYGONS && file.points <= INDICES_MAX - SPARE_POINTS &&
           file.polyVertices <= INDICES_MAX - SPARE_POLY_VERTICES;
}

uint64_t BspTableBytes() {
    const GeometryCounts& file = WorldGeometry.file;
    return uint64_t{WorldGeometry.nodeCount} * sizeof(BspNode) + uint64_t{WorldGeometry.leafCount} * sizeof(BspLeaf) +
           uint64_t{file.planes} * sizeof(PlaneRecord) + uint64_t{file.polygons} * sizeof(PolyRecord) +
           uint64_t{file.points} * sizeof(WorldPoint) + uint64_t{file.polyVertices} * sizeof(PolyVertex);
}

bool BspTablesAreValid() {
    return NodesAreValid() && LeavesAreValid() && PlanesAreValid() && PolygonsAreValid() &&
           PointsAndVerticesAreValid() && NodesFormATree();
}
