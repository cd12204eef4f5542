// The level, ordered back to front from the camera: the BSP tree is walked from the eye's far side to its near side,
// subtrees outside the view volume are skipped, and what remains becomes a list that is drawn in order, or from its end
// where the renderer wants the nearest polygon first (render/raster.h).
#pragma once

#include "records/table_facts.h"

#include <cstdint>

// Entries of WorldGeometry.renderList, rebuilt every frame, at most two a leaf:
//   e < 0                       leaf ~e, wholly inside the side planes: its polygons are never clipped
//   0 <= e < CHARACTER_ENTRY    leaf e, crossing a side plane
//   e >= CHARACTER_ENTRY        the character's polygons in leaf e - CHARACTER_ENTRY
constexpr int32_t CHARACTER_ENTRY = BSP_LEAVES_MAX;
extern int32_t RenderListCount;

// Needs the camera of the frame, FarDistance, the projection scales and the node radii. With FogSwitch 0 every leaf
// is drawn as outlines, each in the palette colour of its number, and nothing is culled.
void RenderWorld();
