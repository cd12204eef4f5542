// What a map, its tree and its world hold, counted and held against the most that is allowed.
#pragma once

#include "records/light_facts.h"
#include "records/table_facts.h"

#include <string>
#include <vector>

// Limits of the compiler. The asserts below hold them against the engine's own; its memory sets others.
constexpr size_t NODES_MAX = 32767;
constexpr size_t LEAVES_MAX = BSP_LEAVES_MAX;
constexpr size_t PLANES_MAX = 62000;
constexpr size_t POLYGONS_MAX = CORNER_LIGHT_POLYGONS;
constexpr size_t POINTS_MAX = 32000;
constexpr size_t CORNERS_MAX = 52000;
static_assert(NODES_MAX <= BSP_NODES_MAX && PLANES_MAX + SPARE_PLANES <= INDICES_MAX &&
              POLYGONS_MAX + SPARE_POLYGONS <= POLYGON_NUMBERS_MAX && POINTS_MAX + SPARE_POINTS <= INDICES_MAX &&
              CORNERS_MAX + SPARE_POLY_VERTICES <= INDICES_MAX);
constexpr size_t POLYGONS_AT_POINT_MAX = 127;
constexpr int TREE_DEPTH_MAX = BSP_DEPTH_MAX - 24;  // a little below the game's own limit

struct Count {
    std::string name;
    size_t value;
    size_t limit;
};
Count DepthCount(int treeDepth);
Count NodeCount(size_t nodes);
Count PolygonCount(size_t polygons);

// ContentError that names `file` and lists all counts that are beyond their limits.
void CheckCounts(const std::string& file, const std::vector<Count>& counts);
