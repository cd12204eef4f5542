// The character's polygons in one leaf.
#pragma once

#include <cstdint>

// Draws them from the farthest to the nearest by mean depth, or the other way round where the renderer wants it so
// (render/raster.h). Each of their points is turned from the world into view space in place, and shaded, once a frame.
void DrawCharacterInLeaf(int32_t leaf);
