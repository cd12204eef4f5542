#include "support/game_file.h"

#include "memory/pool.h"
#include "support/memory_file.h"
#include "testing/test_machine.h"

#include <cstdlib>
#include <vector>

uint32_t PoolLargestFree;

namespace {

struct Block {
    void* data;
    uint32_t bytes;
};
std::vector<Block> blocks;
uint32_t taken;

}  // namespace

void PoolInit(uint8_t*, uint8_t*) {
    PoolForget();
}

void* PoolMalloc(uint32_t bytes) {
    if (bytes > POOL_BYTES - taken) return nullptr;
    Block block = {nullptr, bytes};
    if (posix_memalign(&block.data, POOL_GRANULE, bytes) != 0) return nullptr;
    taken += bytes;
    blocks.push_back(block);
    return block.data;
}

void* PoolMallocHigh(uint32_t bytes) {
    return PoolMalloc(bytes);
}

uint32_t PoolFree(void* data) {
    for (Block& block : blocks) {
        if (data == nullptr || block.data != data) continue;
        const uint32_t bytes = block.bytes;
        std::free(data);
        taken -= bytes;
        block = blocks.back();
        blocks.pop_back();
        return bytes;
    }
    return 0;
}

uint32_t PoolFreeTotal() {
    return POOL_BYTES - taken;
}

void PoolForget() {
    for (const Block& block : blocks)
        std::free(block.data);
    blocks.clear();
    taken = 0;
}

const char* BeginGameFile(const uint8_t* data, size_t size) {
    static const bool machine = (UseTestMachine(), true);
    static_cast<void>(machine);
    PoolForget();
    BeginMemoryFiles();
    return AddMemoryFile(data, size);
}

const char* AddGameFile(const std::vector<uint8_t>& bytes) {
    return AddMemoryFile(bytes.data(), bytes.size());
}
