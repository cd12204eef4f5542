// The consistency of a world file's tables, so that everything behind the loader may use them as they stand.
#pragma once

#include <cstdint>

// The counts against the index widths of the records and tables: nodes 1..32768, leaves 1..16384, planes, points
// and polygon vertices with their spare room within 65536, polygons with theirs within 32767.
bool BspCountsAreValid();
uint64_t BspTableBytes();  // size of the six tables in the file, by the counts

// The loaded tables: every index in range, the nodes a tree of at most BSP_DEPTH_MAX levels whose leaves hold at most
// BSP_LEAF_POLYGONS_MAX, 3..12 corners, finite numbers. Radii and point normals are not looked at, since they are
// overwritten before anything reads them.
bool BspTablesAreValid();
