#include "character/depth_list.h"

#include "character/leaf_bins.h"

#include <algorithm>
#include <cstring>

DepthNode DepthList[DEPTH_LIST_SIZE];

namespace {

constexpr int32_t HEAD = 0, TAIL = 1, FIRST = 2;
constexpr int32_t KEY_BYTES = 4;
constexpr int32_t FEW = 48;  // up to here a comparison sort is faster: a radix sort has to clear its counts
constexpr uint32_t SIGN = 0x80000000;

int32_t NextFree;

float BetweenMarkers(float depth) {
    if (depth >= DEPTH_LIST_HEAD) return DEPTH_LIST_HEAD - 1.0f;
    if (!(depth > DEPTH_LIST_TAIL)) return DEPTH_LIST_TAIL + 1.0f;
    return depth;
}

struct SortedNode {
    uint32_t key;  // a smaller key is farther
    int32_t node;
};

bool IsFarther(const SortedNode& a, const SortedNode& b) {
    return a.key != b.key ? a.key < b.key : a.node < b.node;
}

uint32_t FarthestFirst(float depth) {
    const float positiveZero = depth + 0.0f;
    uint32_t bits;
    std::memcpy(&bits, &positiveZero, sizeof bits);
    return (bits & SIGN) != 0 ? bits : ~(bits | SIGN);
}

// One pass of a radix sort; equal keys keep their order. False: all keys have the same byte there, nothing was moved.
bool SortByKeyByte(const SortedNode* from, SortedNode* to, int32_t count, int32_t byte) {
    int32_t starts[257] = {};
    const auto digit = [byte](const SortedNode& entry) { return entry.key >> (8 * byte) & 0xFF; };
    for (int32_t i = 0; i < count; ++i)
        starts[digit(from[i]) + 1]++;
    if (starts[digit(from[0]) + 1] == count) return false;
    for (int32_t i = 1; i < 256; ++i)
        starts[i] += starts[i - 1];
    for (int32_t i = 0; i < count; ++i)
        to[starts[digit(from[i])]++] = from[i];
    return true;
}

}  // namespace

void InitDepthList() {
    DepthList[HEAD] = {TAIL, -1, 0, DEPTH_LIST_HEAD};
    DepthList[TAIL] = {-1, HEAD, 0, DEPTH_LIST_TAIL};
    NextFree = FIRST;
}

void InsertByDepth(float depth, int16_t polygon) {
    if (NextFree >= DEPTH_LIST_SIZE) {
        DroppedPolygons += 1;
        return;
    }
    DepthList[NextFree++] = {-1, -1, polygon, BetweenMarkers(depth)};
}

void LinkDepthList() {
    static SortedNode buffers[2][DEPTH_LIST_SIZE];
    SortedNode* sorted = buffers[0];
    SortedNode* other = buffers[1];
    const int32_t count = NextFree - FIRST;
    for (int32_t i = 0; i < count; ++i)
        sorted[i] = {FarthestFirst(DepthList[FIRST + i].depth), FIRST + i};
    if (count <= FEW) {
        std::sort(sorted, sorted + count, IsFarther);
    } else {
        for (int32_t byte = 0; byte < KEY_BYTES; ++byte)
            if (SortByKeyByte(sorted, other, count, byte)) std::swap(sorted, other);
    }
    int32_t previous = HEAD;
    for (int32_t i = 0; i < count; ++i) {
        const int32_t node = sorted[i].node;
        DepthList[previous].next = node;
        DepthList[node].previous = previous;
        previous = node;
    }
    DepthList[previous].next = TAIL;
    DepthList[TAIL].previous = previous;
}
