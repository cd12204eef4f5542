#include "datacheck/pool_replay.h"

#include "records/animation_facts.h"
#include "records/light_facts.h"
#include "records/table_facts.h"

#include <algorithm>

namespace {

// Data bytes of the first free block on a machine whose malloc aligns to 16, which is not always the granule.
constexpr size_t FREE_BYTES = POOL_BYTES - POOL_GRANULE - POOL_HEADER_BYTES - POOL_GRANULE;

// Pool bytes that a block of so many data bytes takes.
size_t Taken(size_t bytes) {
    return (bytes + POOL_GRANULE - 1) / POOL_GRANULE * POOL_GRANULE + POOL_HEADER_BYTES;
}

class Pool {
public:
    void Take(const char* what, size_t bytes) {
        const size_t need = Taken(bytes);
        if (use.failedFor != nullptr) return;
        if (need > use.free) {
            use.failedFor = what;
        } else {
            use.free -= need;
        }
    }

    PoolUse use{nullptr, FREE_BYTES};
};

}  // namespace

size_t CharacterBytes(const std::filesystem::path& folder) {
    size_t bytes = 0;
    const auto add = [&](const char* file) {
        std::error_code error;
        const uintmax_t size = std::filesystem::file_size(folder / file, error);
        if (!error) bytes += Taken(size);
    };
    for (const char* file : PLAYER_ANIMATION_FILES)
        add(file);
    add("zero.wei");
    return bytes == 0 ? 0 : bytes + Taken(BONES_MAX * BONE_BYTES);
}

PoolUse ReplayPool(const WorldFile& world, size_t textureCount, size_t texturePages, size_t characterBytes) {
    const size_t planes = world.planes.size() + SPARE_PLANES;
    const size_t polygons = world.polygons.size() + SPARE_POLYGONS;
    const size_t points = world.points.size() + SPARE_POINTS;
    const size_t corners = world.corners.size() + SPARE_POLY_VERTICES;
    const char* const name = "the world";
    Pool pool;
    for (const size_t bytes :
         {NODE_BYTES * world.nodes.size(), LEAF_BYTES * world.leaves.size(), PLANE_BYTES * planes,
          POLYGON_BYTES * polygons, POLYGON_FRAME_BYTES * polygons, POINT_BYTES * points, CORNER_BYTES * corners,
          VIEW_POINT_BYTES * points, POINT_LIGHT_BYTES * points, POINT_LIGHT_BYTES * points, POINT_LIGHT_BYTES * points,
          POINT_STAMP_BYTES * points, POINT_STAMP_BYTES * points,
          POLYGON_STAMP_BYTES * std::max(polygons, size_t{CORNER_NUMBER_POLYGONS}), CORNER_BYTES * corners,
          LEAF_LIST_BYTES * world.leaves.size()}) {
        pool.Take(name, bytes);
    }
    pool.Take("the character", characterBytes);
    pool.Take("texture.bin",
              TEXTURE_RECORDS_OFFSET + TEXTURE_RECORD_BYTES * textureCount + TEXTURE_PAGE_BYTES * texturePages);
    pool.Take("the texture table", textureCount);
    // The counters of the normals are given back before the frame is taken: the larger of the two must fit.
    Pool counters = pool;
    counters.Take("the point normals",
                  std::max(size_t{NORMAL_COUNTERS_BYTES_MIN}, NORMAL_COUNTER_BYTES * world.points.size()));
    if (counters.use.failedFor != nullptr) return counters.use;
    pool.Take("the frame", OFFSCREEN_FRAME_BYTES);
    return pool.use;
}
