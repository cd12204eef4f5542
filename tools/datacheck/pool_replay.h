// The engine's memory pool, replayed: what a level's files take of its 8 MiB, in the order in which they are loaded.
#pragma once

#include "formats/world_file.h"

#include <cstddef>
#include <filesystem>

struct PoolUse {
    const char* failedFor = nullptr;  // what did not fit; null: everything did
    size_t free = 0;                  // bytes left in the end
};

// What stays of the character, from the folder of its files: clips, weights and bones. Mesh and skins, which are given
// back, count in place of the four clips that are loaded twice. 0 without a file.
size_t CharacterBytes(const std::filesystem::path& folder);
PoolUse ReplayPool(const WorldFile& world, size_t textureCount, size_t texturePages, size_t characterBytes);
