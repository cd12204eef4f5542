// The character's facing triangles, split at the node planes and binned into the leaves they lie in.
//
// Split pieces are scratch polygons, points and polygon vertices above the used counts; everything is refilled every
// frame. What does not fit a fixed table is dropped and counted.
#pragma once

#include "character/character_tables.h"

#include <cstdint>

constexpr uint32_t BIN_MAX = 20000;  // polygon numbers in the visible list and in the bins

extern uint32_t DroppedPolygons;  // polygons and pieces dropped in this frame for want of room

void ClearVisibleList();
void AppendVisible(uint32_t polygon);
uint32_t VisibleCount();
// Bins the visible list, starting below the tree's planes that lie more than 100 units from (x, y, z).
void BinActorPolygons(uint32_t count, float x, float y, float z);
