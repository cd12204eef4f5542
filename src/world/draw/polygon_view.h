// The corners of a world polygon in camera space and on the screen, worked out four at a time.
#pragma once

#include "records/world_records.h"
#include "render/raster.h"

#include <cstdint>

typedef float Float4 __attribute__((vector_size(16)));
typedef int32_t Int4 __attribute__((vector_size(16)));

struct CornerGroup {
    Float4 x, y, z;         // as in ViewPoint
    Int4 screenX, screenY;  // as in ViewPoint.screen.fixed; these and inverseDepth only where IsProjected
    Float4 inverseDepth;
};

struct PolygonView {
    static constexpr int MOST_GROUPS = 64;  // for 255 corners; what is missing from the last repeats its last corner
    CornerGroup groups[MOST_GROUPS];
    uint8_t outsideAll;  // the bits that the outcodes of all corners have
    uint8_t outsideAny;  // the bits that any of them has
    bool isOnScreen;     // projected, and all corners so near the frame that bounds holds
    ScreenBounds bounds;
};

// Takes the view matrix of the frame; before the first LookAtPolygon.
void BeginPolygonViews();

void LookAtPolygon(const PolyRecord& polygon, PolygonView& view);

// Into WorldGeometry.viewPoints and outcodes, for the steps that follow.
void StoreView(const PolyRecord& polygon, const PolygonView& view);
