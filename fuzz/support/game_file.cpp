#include "support/game_file.h"

#include "core/testing.h"
#include "memory/pool.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

uint32_t PoolLargestFree;

namespace {

struct Block {
    void* data;
    uint32_t bytes;
};
std::vector<Block> blocks;
uint32_t taken;

struct MemoryFile {
    int descriptor;
    std::string path;
};
std::deque<MemoryFile> files;  // made once, used again for every input
size_t filesInUse;

void MakeFile() {
    if (files.empty()) UseTestMachine();
    const int descriptor = memfd_create("input", 0);
    if (descriptor < 0) std::abort();
    files.push_back({descriptor, "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor)});
}

const char* NextFile(const uint8_t* data, size_t size) {
    if (filesInUse == files.size()) MakeFile();
    const MemoryFile& file = files[filesInUse++];
    if (ftruncate(file.descriptor, 0) != 0) std::abort();
    if (pwrite(file.descriptor, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
    return file.path.c_str();
}

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
    PoolForget();
    filesInUse = 0;
    return NextFile(data, size);
}

const char* AddGameFile(const std::vector<uint8_t>& bytes) {
    return NextFile(bytes.data(), bytes.size());
}
