// The memory pool of one game: first fit, 32-byte granules, a 32-byte header in front of every block. Loaders take
// from it and hardly ever give back. The end of the game releases the whole pool, and all pointers into it die then.
#pragma once

#include "records/table_facts.h"

#include <cstdint>

constexpr uint32_t POOL_FILL_BYTES = 0x800000;  // PoolInit fills this much of the pool, from its start, with 0x55
constexpr uint32_t POOL_REQUEST_MAX = 0x7FFFFFC0;

extern uint32_t PoolLargestFree;  // data bytes; refreshed by PoolFreeTotal

// One free block over start..end, cut to the granule. The range must hold at least three granules and stay alive.
void PoolInit(uint8_t* start, uint8_t* end);

// 32-byte aligned, not cleared. Null when no free block holds the request, rounded up to the granule, and one header
// more, or when `bytes` is above POOL_REQUEST_MAX. 0 bytes give a distinct pointer and cost a header.
void* PoolMalloc(uint32_t bytes);
void* PoolMallocHigh(uint32_t bytes);  // the same from the high end

// Releases a block and returns its data size. Null, or an address that is not the start of a block's data: 0, and
// nothing is done. A block may be released only once.
uint32_t PoolFree(void* data);

uint32_t PoolFreeTotal();  // data bytes of all free blocks; 0 without a pool
void PoolForget();         // called when the pool's memory is released: from then on there is no pool
