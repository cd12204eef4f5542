#include "character/depth_list.h"

#include "character/leaf_bins.h"

DepthNode DepthList[DEPTH_LIST_SIZE];

namespace {

int32_t NextFree;

float BetweenMarkers(float depth) {
    if (depth >= DEPTH_LIST_HEAD) return DEPTH_LIST_HEAD - 1.0f;
    if (!(depth > DEPTH_LIST_TAIL)) return DEPTH_LIST_TAIL + 1.0f;
    return depth;
}

}  // namespace

void InitDepthList() {
    DepthList[0] = {1, -1, 0, DEPTH_LIST_HEAD};
    DepthList[1] = {-1, 0, 0, DEPTH_LIST_TAIL};
    NextFree = 2;
}

void InsertByDepth(float depth, int16_t polygon) {
    if (NextFree >= DEPTH_LIST_SIZE) {
        DroppedPolygons += 1;
        return;
    }
    depth = BetweenMarkers(depth);
    int32_t k = 0;
    while (DepthList[k].next != -1 && depth <= DepthList[k].depth)
        k = DepthList[k].next;
    const int32_t previous = DepthList[k].previous;
    DepthList[NextFree] = {k, previous, polygon, depth};
    DepthList[previous].next = NextFree;
    DepthList[k].previous = NextFree;
    NextFree += 1;
}
