// The corners of a world polygon in camera space and on the screen, worked out four at a time.
#pragma once

#include "records/world_records.h"
#include "render/raster.h"
#include "world/world_tables.h"

#include <cstdint>

// The camera-space coordinates of four corners, as in their ViewPoints.
struct CornerGroup {
    Float4 x, y, z;
};

// In each group: where the polygon has fewer corners left, its first one stands in the other lanes.
struct PolygonView {
    CornerGroup groups[SCREEN_CORNERS_MAX];
    ScreenCorners screen[SCREEN_CORNERS_MAX];  // x, y and inverseDepth, only where NearestFirst()
    uint8_t outsideAll;                        // the bits that are set in the outcodes of all corners
    uint8_t outsideAny;                        // the bits that are set in any corner's outcode
    bool isOnScreen;                           // projected, and all corners so near the frame that bounds holds
    ScreenBounds bounds;
};

// Reads the frame's view matrix. To be called before the frame's first LookAtPolygon.
void BeginPolygonViews();

void LookAtPolygon(const PolyRecord& polygon, PolygonView& view);

// The same of the eight corners of a box that is a little larger. Where they are all seen, so is all inside the box.
void LookAtBox(const CornerBox& box, PolygonView& view);

// Works out the intensities of view.screen, for a polygon that isOnScreen.
void ShadeView(uint32_t polygon, PolygonView& view);

// Writes the corners into WorldGeometry.viewPoints and outcodes, for the steps that follow.
void StoreView(const PolyRecord& polygon, const PolygonView& view);
