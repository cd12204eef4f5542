// The blocks of GlobalAlloc, with their sizes.
#pragma once

#include <cstddef>

// Bytes from `address` to the end of the block it lies in; 0 outside all blocks.
size_t GlobalBytesFrom(const void* address);
