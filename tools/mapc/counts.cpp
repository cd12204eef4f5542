#include "mapc/counts.h"

#include "formats/error.h"

#include <fmt/format.h>

Count DepthCount(int treeDepth) {
    return {"levels of the tree", static_cast<size_t>(treeDepth), size_t{TREE_DEPTH_MAX}};
}

Count NodeCount(size_t nodes) {
    return {"nodes", nodes, NODES_MAX};
}

Count PolygonCount(size_t polygons) {
    return {"polygons", polygons, POLYGONS_MAX};
}

void CheckCounts(const std::string& file, const std::vector<Count>& counts) {
    std::string exceeded;
    for (const Count& count : counts) {
        if (count.value <= count.limit) continue;
        exceeded +=
            fmt::format("{}{} {}, at most {}", exceeded.empty() ? "" : "; ", count.value, count.name, count.limit);
    }
    if (exceeded.empty()) return;
    Refuse(file, 0, "the level is too large: " + exceeded,
           "leave out or simplify brushes, or raise the key \"subdivide\" of worldspawn");
}
