// A world of many leaves whose painter's order is right. Link `test_support`.
#pragma once

#include "support/tiny_world.h"

// Publishes a cube of cellsPerSide x cellsPerSide x cellsPerSide cells around the origin, a third of them solid, at
// random. Each empty cell is a leaf with the walls that are seen from it; a balanced tree of grid planes, which point
// either way, splits the cube down to single cells.
void PublishBoxGrid(TinyWorld& world, int cellsPerSide, float cellSize, uint32_t seed);
