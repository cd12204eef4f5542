// The corners of a world polygon in camera space and on the screen, worked out four at a time.
#pragma once

#include "records/world_records.h"
#include "render/raster.h"

#include <cstdint>

typedef float Float4 __attribute__((vector_size(16)));
typedef int32_t Int4 __attribute__((vector_size(16)));

struct CornerGroup {
    Float4 x, y, z;  // the fields of four ViewPoints
    // As ViewPoint.screen.fixed. These and inverseDepth are valid only where IsProjected.
    Int4 screenX, screenY;
    Float4 inverseDepth;
};

struct PolygonView {
    // Enough for 255 corners. Where the last group has fewer than four, it repeats the last corner.
    static constexpr int GROUPS_MAX = 64;
    CornerGroup groups[GROUPS_MAX];
    uint8_t outsideAll;  // the bits that are set in the outcodes of all corners
    uint8_t outsideAny;  // the bits that are set in any corner's outcode
    bool isOnScreen;     // projected, and all corners so near the frame that bounds holds
    ScreenBounds bounds;
};

// Reads the frame's view matrix. To be called before the frame's first LookAtPolygon.
void BeginPolygonViews();

void LookAtPolygon(const PolyRecord& polygon, PolygonView& view);

// Writes the corners into WorldGeometry.viewPoints and outcodes, for the steps that follow.
void StoreView(const PolyRecord& polygon, const PolygonView& view);
