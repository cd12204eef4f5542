#include "mapc/limits.h"

#include "formats/error.h"
#include "records/light_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {

// The part of the engine's 8 MiB that is left for the world beside 12 texture pages, the character, its clips and the
// frame.
constexpr size_t MEMORY_MAX = 4300000;

std::vector<size_t> PolygonsAtPoints(const WorldFile& world) {
    std::vector<size_t> uses(world.points.size(), 0);
    for (const WorldCorner& corner : world.corners)
        ++uses[corner.point];
    return uses;
}

size_t MostCorners(const WorldFile& world, uint8_t shading) {
    size_t most = 0;
    for (const WorldPolygon& polygon : world.polygons) {
        if (polygon.shading == shading) most = std::max(most, size_t{polygon.cornerCount});
    }
    return most;
}

}  // namespace

void CheckSize(const Brushes& brushes, double scale) {
    Box box;
    for (const Brush& brush : brushes.list)
        box.Add(brush.box);
    const Vec3 size = (box.max - box.min) * scale;
    const double largest = std::max({size.x, size.y, size.z});
    if (largest <= LEVEL_SIZE_MAX) return;
    Refuse(brushes.file, 0, fmt::format("the level measures {:.0f} units from end to end", largest),
           fmt::format("make it smaller, or its key \"scale\": {:.0f} are the most", LEVEL_SIZE_MAX));
}

double DiagonalOf(const WorldFile& world) {
    Box box;
    for (const WorldPoint& point : world.points)
        box.Add(Vec3{point.position[0], point.position[1], point.position[2]});
    return box.IsEmpty() ? 0 : Length(box.max - box.min);
}

std::vector<Count> CountWorld(const WorldFile& world, int treeDepth) {
    const size_t memory = NODE_BYTES * world.nodes.size() + LEAF_TABLES_BYTES * world.leaves.size() +
                          PLANE_BYTES * world.planes.size() + POLYGON_TABLES_BYTES * world.polygons.size() +
                          POINT_TABLES_BYTES * world.points.size() + CORNER_TABLES_BYTES * world.corners.size();
    const std::vector<size_t> uses = PolygonsAtPoints(world);
    return {NodeCount(world.nodes.size()),
            {"leaves", world.leaves.size(), LEAVES_MAX},
            {"planes", world.planes.size(), PLANES_MAX},
            PolygonCount(world.polygons.size()),
            {"points", world.points.size(), POINTS_MAX},
            {"polygon corners", world.corners.size(), CORNERS_MAX},
            {"polygons at one point", uses.empty() ? 0 : *std::max_element(uses.begin(), uses.end()),
             POLYGONS_AT_POINT_MAX},
            {"corners of a polygon", MostCorners(world, WORLD_POINT_LIGHT), size_t{BSP_CORNERS_MAX}},
            {"corners of a polygon with corner light", MostCorners(world, WORLD_CORNER_LIGHT),
             size_t{CORNER_LIGHT_CORNERS}},
            {"depth of the tree", static_cast<size_t>(treeDepth), size_t{TREE_DEPTH_MAX}},
            {"bytes of engine memory", memory, MEMORY_MAX}};
}
