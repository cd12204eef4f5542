#include "interfaces/global_memory.h"

#include "host/win32.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>

namespace {

constexpr uintptr_t BYTES_MIN = 16;

std::map<uintptr_t, uintptr_t> blocks;  // start, bytes

}  // namespace

size_t GlobalBytesFrom(const void* address) {
    const auto wanted = reinterpret_cast<uintptr_t>(address);
    const auto after = blocks.upper_bound(wanted);
    if (after == blocks.begin()) return 0;
    const auto& [start, bytes] = *std::prev(after);
    return wanted - start < bytes ? bytes - (wanted - start) : 0;
}

HGLOBAL GlobalAlloc(UINT, uintptr_t bytes) {
    const uintptr_t size = std::max(bytes, BYTES_MIN);
    void* block = std::calloc(1, size);
    if (block) blocks[reinterpret_cast<uintptr_t>(block)] = size;
    return block;
}

void* GlobalLock(HGLOBAL memory) {
    return memory;
}

BOOL GlobalUnlock(HGLOBAL) {
    return TRUE;
}

HGLOBAL GlobalHandle(const void* memory) {
    return const_cast<void*>(memory);
}

HGLOBAL GlobalFree(HGLOBAL memory) {
    if (blocks.erase(reinterpret_cast<uintptr_t>(memory)) == 0) return memory;
    std::free(memory);
    return nullptr;
}
