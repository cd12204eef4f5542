// What the fuzz targets of the game's loaders share: the input as a file, and a pool whose blocks are guarded.
//
// FatalError throws FatalThrown. PoolMalloc gives each block its own piece of the heap, so that the address sanitizer
// sees every byte read or written outside it.
#pragma once

#include "support/throwing_fatal.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Empties the pool, and installs the test machine at the first call. Returns the path of a file that holds the input
// until the next call.
const char* BeginGameFile(const uint8_t* data, size_t size);

// Makes another file beside it, which lasts as long.
const char* AddGameFile(const std::vector<uint8_t>& bytes);
