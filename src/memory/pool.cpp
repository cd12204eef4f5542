#include "memory/pool.h"

#include <algorithm>
#include <new>

uint32_t PoolLargestFree;

namespace {

// Stands directly in front of the data of every block, free or allocated.
struct BlockHeader {
    BlockHeader* prev;  // neighbour in the list (free or used) that the block is on
    BlockHeader* next;
    uint8_t* data;  // always the header's own address + 32, by which PoolFree recognises a block
    int32_t size;   // data bytes, a multiple of 32
};
constexpr int32_t HEADER_BYTES = POOL_HEADER_BYTES;
static_assert(sizeof(BlockHeader) <= HEADER_BYTES);

uint8_t* PoolStart;
uint8_t* PoolEnd;
BlockHeader* FreeHead;  // blocks in ascending order of address, no two of them adjacent in memory
BlockHeader* FreeTail;
BlockHeader* UsedHead;  // most recently allocated first

uintptr_t RoundUp(uintptr_t value) {
    return (value + POOL_GRANULE - 1) & ~uintptr_t{POOL_GRANULE - 1};
}

BlockHeader* MakeBlock(uint8_t* address, BlockHeader* prev, BlockHeader* next, int32_t size) {
    return new (address) BlockHeader{prev, next, address + HEADER_BYTES, size};
}

uint8_t* EndOf(const BlockHeader* block) {
    return block->data + block->size;
}

uint8_t* StartOf(BlockHeader* block) {
    return block->data - HEADER_BYTES;
}

void* PushUsed(BlockHeader* block) {
    block->prev = nullptr;
    block->next = UsedHead;
    if (UsedHead) UsedHead->prev = block;
    UsedHead = block;
    return block->data;
}

void UnlinkUsed(BlockHeader* block) {
    if (block->prev) block->prev->next = block->next;
    if (block->next) block->next->prev = block->prev;
    if (UsedHead == block) UsedHead = block->next;
}

// Links `block` into the free list between two neighbours, either of which may be null.
void LinkFree(BlockHeader* block, BlockHeader* prev, BlockHeader* next) {
    block->prev = prev;
    block->next = next;
    (prev ? prev->next : FreeHead) = block;
    (next ? next->prev : FreeTail) = block;
}

// Joins a free block to the free block right after it; the lower header stays.
void MergeWithNext(BlockHeader* block) {
    block->size += block->next->size + HEADER_BYTES;
    LinkFree(block, block->prev, block->next->next);
}

bool IsAdjacentToNext(const BlockHeader* block) {
    return block->next && EndOf(block) == StartOf(block->next);
}

BlockHeader* BlockOfData(void* data) {
    auto* bytes = static_cast<uint8_t*>(data);
    const auto address = reinterpret_cast<uintptr_t>(bytes);
    if (!bytes || address % POOL_GRANULE != 0) return nullptr;
    if (address < reinterpret_cast<uintptr_t>(PoolStart) + HEADER_BYTES) return nullptr;
    if (address > reinterpret_cast<uintptr_t>(PoolEnd)) return nullptr;
    auto* block = reinterpret_cast<BlockHeader*>(bytes - HEADER_BYTES);
    return block->data == bytes ? block : nullptr;
}

}  // namespace

void PoolInit(uint8_t* start, uint8_t* end) {
    const auto first = reinterpret_cast<uintptr_t>(start);
    const auto last = reinterpret_cast<uintptr_t>(end) - (POOL_GRANULE - 1);
    PoolStart = start + (RoundUp(first) - first);
    PoolEnd = end - (POOL_GRANULE - 1) - last % POOL_GRANULE;
    FreeHead = FreeTail =
        MakeBlock(PoolStart, nullptr, nullptr, static_cast<int32_t>(PoolEnd - PoolStart) - HEADER_BYTES);
    UsedHead = nullptr;
}

void* PoolMalloc(uint32_t bytes) {
    if (bytes > POOL_REQUEST_MAX) return nullptr;
    const auto size = static_cast<int32_t>(RoundUp(bytes));
    // Kept as it is: the room of a header must be left over, so a request that fits exactly fails.
    const int32_t need = size + HEADER_BYTES;
    for (BlockHeader* block = FreeHead; block; block = block->next) {
        if (block->size < need) continue;
        BlockHeader* rest = MakeBlock(block->data + size, nullptr, nullptr, block->size - need);
        LinkFree(rest, block->prev, block->next);
        block->size = size;
        return PushUsed(block);
    }
    return nullptr;
}

void* PoolMallocHigh(uint32_t bytes) {
    if (bytes > POOL_REQUEST_MAX) return nullptr;
    const auto size = static_cast<int32_t>(RoundUp(bytes));
    const int32_t need = size + HEADER_BYTES;
    for (BlockHeader* block = FreeTail; block; block = block->prev) {
        if (block->size < need) continue;
        block->size -= need;
        return PushUsed(MakeBlock(EndOf(block), nullptr, nullptr, size));
    }
    return nullptr;
}

uint32_t PoolFree(void* data) {
    BlockHeader* block = BlockOfData(data);
    if (!block) return 0;
    const auto size = static_cast<uint32_t>(block->size);
    UnlinkUsed(block);

    BlockHeader* below = nullptr;
    BlockHeader* above = FreeHead;
    while (above && above->data <= block->data) {
        below = above;
        above = above->next;
    }
    LinkFree(block, below, above);
    if (below && IsAdjacentToNext(below)) {
        MergeWithNext(below);
        block = below;
    }
    if (IsAdjacentToNext(block)) MergeWithNext(block);
    return size;
}

uint32_t PoolFreeTotal() {
    uint32_t total = 0;
    PoolLargestFree = 0;
    for (const BlockHeader* block = FreeHead; block; block = block->next) {
        const auto size = static_cast<uint32_t>(block->size);
        total += size;
        PoolLargestFree = std::max(PoolLargestFree, size);
    }
    return total;
}

void PoolForget() {
    PoolStart = PoolEnd = nullptr;
    FreeHead = FreeTail = UsedHead = nullptr;
}
