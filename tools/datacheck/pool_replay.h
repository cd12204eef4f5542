// The engine's memory pool, replayed: what a level's files take of its 8 MiB, in the order in which they are loaded.
#pragma once

#include "formats/world_file.h"

#include <cstddef>

struct PoolUse {
    const char* failedFor = nullptr;  // what did not fit; null: everything did
    size_t free = 0;                  // bytes left in the end
};

// characterBytes: meshes, clips and weights.
PoolUse ReplayPool(const WorldFile& world, size_t textureCount, size_t texturePages, size_t characterBytes);
