// The world file (.bgm) and what is derived from it at load: collision frames, bounding radii, frame stamps.
//
// File: "Gbsp", version 10, the counts N L P F V K of nodes, leaves, planes, polygons, points and polygon vertices,
// all big-endian 32-bit; then the six tables in that order, packed little-endian records (records/world_records.h).
// Bytes after the last table are allowed.
#pragma once

#include "records/table_facts.h"

#include <cstdint>

constexpr uint32_t BSP_MAGIC = 0x47627370;  // "Gbsp"
constexpr uint32_t BSP_VERSION = 10;

// Fills WorldGeometry with the file's contents: file and used counts are set, spare polygon records, light bytes and
// stamps are 0, FrameCount is 1. Must be the first pool user of a level.
// FatalError(0, path): "No .BSP file found"; "Old BSP Version"; "Not a valid BSP file": wrong magic, too short, a
// count or index out of range, a cyclic, shared or too deep node, more than BSP_LEAF_POLYGONS_MAX, a corner count
// outside 3..12, a number that is not finite; "Not enough memory for the BSP file": the pool is too small for the
// tables.
void LoadBspWorld(const char* path);

void ComputePolyFrames();  // sets those of the file's polygons; called by LoadBspWorld
void GenerateNodeRadii();  // those of every node and leaf below the root; CornerBoxes, PolygonLanes; needs ScreenAspect
void SetStaticMarks();     // WorldGeometry.fixed = WorldGeometry.used
void ResetViewCache();     // both ViewPoint stamps of every point in use = 0
void FillStamps(uint16_t value);  // every stamp compared with FrameCount, over its full capacity
