#include "datacheck/pool_replay.h"

#include <algorithm>

namespace {

constexpr size_t POOL_BYTES = 8388544;  // the first block's data on a machine whose malloc aligns to 16
constexpr size_t GRANULE = 32;
constexpr size_t HEADER = 32;

constexpr size_t SPARE = 3000;  // planes and polygons beyond the file's
constexpr size_t SPARE_POINTS = 9000;
constexpr size_t STAMPED_POLYGONS = 8192;  // least number of polygons with corner light stamps
constexpr size_t TEXTURE_HEADER = 770;
constexpr size_t FRAME_BYTES = 1048576;
constexpr size_t NORMAL_COUNTER_BYTES = 35000;

class Pool {
public:
    void Take(const char* what, size_t bytes) {
        const size_t need = (bytes + GRANULE - 1) / GRANULE * GRANULE + HEADER;
        if (use.failedFor != nullptr) return;
        if (need > use.free) {
            use.failedFor = what;
        } else {
            use.free -= need;
        }
    }

    PoolUse use{nullptr, POOL_BYTES};
};

}  // namespace

PoolUse ReplayPool(const WorldFile& world, size_t textureCount, size_t texturePages, size_t characterBytes) {
    const size_t planes = world.planes.size() + SPARE;
    const size_t polygons = world.polygons.size() + SPARE;
    const size_t points = world.points.size() + SPARE_POINTS;
    const size_t corners = world.corners.size() + SPARE_POINTS;
    const char* const name = "the world";
    Pool pool;
    for (const size_t bytes :
         {42 * world.nodes.size(), 44 * world.leaves.size(), 16 * planes, 10 * polygons, 20 * polygons, 24 * points,
          16 * corners, 32 * points, points, points, points, 2 * points, 2 * points,
          16 * std::max(polygons, STAMPED_POLYGONS), 16 * corners, 8 * world.leaves.size()}) {
        pool.Take(name, bytes);
    }
    pool.Take("the character", characterBytes);
    pool.Take("texture.bin", TEXTURE_HEADER + 12 * textureCount + 65536 * texturePages);
    pool.Take("the texture table", textureCount);
    // The counters of the normals are given back before the frame is taken: the larger of the two must fit.
    Pool counters = pool;
    counters.Take("the point normals", std::max(NORMAL_COUNTER_BYTES, 4 * world.points.size()));
    if (counters.use.failedFor != nullptr) return counters.use;
    pool.Take("the frame", FRAME_BYTES);
    return pool.use;
}
