// The engine's memory pool, replayed: what a level's files take of its 8 MiB, in the order in which they are loaded.
#pragma once

#include "formats/world_file.h"

#include <cstddef>
#include <filesystem>

struct PoolUse {
    const char* failedFor = nullptr;  // what did not fit; null: everything did
    size_t free = 0;                  // bytes left in the end
};

// Pool bytes that the character keeps, by the files of a folder: the clips, each as often as the game loads it, the
// weights and the bones, with their headers. 0: a file is missing. Mesh and skin are given back before the clips are
// loaded, and do not count.
size_t CharacterBytes(const std::filesystem::path& folder);
PoolUse ReplayPool(const WorldFile& world, size_t textureCount, size_t texturePages, size_t characterBytes);
