#include "datacheck/pool_replay.h"
#include "datacheck/rules.h"
#include "mapc/limits.h"
#include "records/table_facts.h"

#include <fmt/format.h>

namespace {

const char* const REBUILD = "build the world again with mapc";
const char* const SIMPLIFY = "leave out or simplify brushes, or raise the key \"subdivide\" of worldspawn";

struct TreeWalk {
    const WorldFile& world;
    std::vector<int> nodeVisits, leafVisits;
    size_t polygons = 0;  // polygons of the leaves, each leaf counted as often as it hangs in the tree
    int depth = 0;
    bool isTree = true;

    explicit TreeWalk(const WorldFile& w)
        : world(w), nodeVisits(w.nodes.size()), leafVisits(w.leaves.size()), isTree(!w.nodes.empty()) {
        if (isTree) Visit(0, 1);
    }

    void Visit(int child, int level) {
        if (child < 0) {
            ++leafVisits[static_cast<size_t>(~child)];
            polygons += world.leaves[static_cast<size_t>(~child)].polygonCount;
            return;
        }
        const size_t i = static_cast<size_t>(child);
        depth = std::max(depth, level);
        isTree = isTree && level <= BSP_DEPTH_MAX && ++nodeVisits[i] == 1;
        if (!isTree) return;
        Visit(world.nodes[i].front, level + 1);
        Visit(world.nodes[i].back, level + 1);
    }
};

}  // namespace

bool CheckTree(const LevelData& level, Report& report) {
    const TreeWalk walk(*level.world);
    const std::string file = level.WorldPath();
    if (!walk.isTree) {
        report.Problem(file, "tree", fmt::format("is empty, deeper than {} or reaches a node twice", BSP_DEPTH_MAX),
                       REBUILD);
        return false;
    }
    if (walk.polygons > BSP_LEAF_POLYGONS_MAX) {
        report.Problem(file, "tree",
                       fmt::format("its leaves hold {} polygons, at most {}", walk.polygons, BSP_LEAF_POLYGONS_MAX),
                       REBUILD);
        return false;
    }
    for (size_t i = 0; i < walk.nodeVisits.size(); ++i) {
        if (walk.nodeVisits[i] == 0) report.Problem(file, fmt::format("node {}", i), "is not reached", REBUILD);
    }
    for (size_t i = 0; i < walk.leafVisits.size(); ++i) {
        if (walk.leafVisits[i] == 1) continue;
        report.Problem(file, fmt::format("leaf {}", i), fmt::format("hangs {} times in the tree", walk.leafVisits[i]),
                       REBUILD);
    }
    return true;
}

void CheckSizes(const LevelData& level, Report& report) {
    const std::string file = level.WorldPath();
    for (const Count& count : CountWorld(*level.world, TreeWalk(*level.world).depth)) {
        if (count.value <= count.limit) continue;
        report.Problem(file, count.name, fmt::format("{}, at most {}", count.value, count.limit), SIMPLIFY);
    }
    const size_t textures = level.textures ? level.textures->slots.size() : 0;
    const size_t pages = level.textures ? level.textures->pages.size() : 0;
    const PoolUse use = ReplayPool(*level.world, textures, pages, level.characterBytes);
    if (use.failedFor != nullptr) {
        report.Problem(file, "memory", fmt::format("the engine's 8 MiB run out at {}", use.failedFor),
                       "simplify the world or use fewer texture pages");
    }
}
