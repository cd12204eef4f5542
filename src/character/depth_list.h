// The character polygons of one leaf, from the farthest to the nearest: a doubly linked list between two markers.
// Polygons of equal depth keep the order of insertion. The nodes are linked when all are there, at the cost of a sort.
#pragma once

#include <cstdint>

constexpr int32_t DEPTH_LIST_SIZE = 2000;  // nodes, the two markers included; what does not fit is dropped and counted
constexpr float DEPTH_LIST_HEAD = 50000.0f;
constexpr float DEPTH_LIST_TAIL = -50000.0f;

struct [[gnu::packed]] DepthNode {
    int32_t next, previous;  // -1: none
    int16_t polygon;
    float depth;
};
static_assert(sizeof(DepthNode) == 14);

extern DepthNode DepthList[DEPTH_LIST_SIZE];  // node 0 is the head marker, node 1 the tail marker

void InitDepthList();
void InsertByDepth(float depth, int16_t polygon);  // depth is kept between the markers; NaN counts as the nearest
void LinkDepthList();                              // after the last insertion, before the list is read
