// The memory pool: first fit, 32-byte granules, a 32-byte header in front of every block. Handed out almost
// never back; the whole pool is thrown away at the end of a game.
#pragma once

#include <cstdint>

constexpr uint32_t POOL_BYTES = 0x800020;       // requested from malloc
constexpr uint32_t POOL_FILL_BYTES = 0x800000;  // of them filled with 0x55
constexpr uint32_t POOL_GRANULE = 32;
constexpr uint32_t POOL_MAX_REQUEST = 0x7FFFFFC0;

extern uint32_t PoolLargestFree;  // refreshed by PoolFreeTotal

void PoolInit(uint8_t* start, uint8_t* end);
void* PoolMalloc(uint32_t bytes);      // 32-byte aligned, not cleared; null: no block is large enough
void* PoolMallocHigh(uint32_t bytes);  // the same from the high end
uint32_t PoolFree(void* data);         // the block's data size; 0: null or not a pool block
uint32_t PoolFreeTotal();              // data bytes of all free blocks; 0 without a pool
void PoolForget();                     // the pool's memory is gone
