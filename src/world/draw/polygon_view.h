// The corners of a world polygon in camera space and on the screen, worked out four at a time.
#pragma once

#include "records/world_records.h"
#include "render/raster.h"
#include "world/polygon_lanes.h"
#include "world/world_tables.h"

#include <cstdint>

struct PolygonView {
    int groupCount;
    CornerGroup groups[SCREEN_CORNERS_MAX];  // camera-space coordinates, as in the ViewPoints
    uint8_t outsideAll;                      // the bits that are set in the outcodes of all corners
    uint8_t outsideAny;                      // the bits that are set in any corner's outcode

    // Only after ProjectView.
    ScreenCorners screen[SCREEN_CORNERS_MAX];
    ScreenBounds bounds;
};

// Reads the frame's view matrix. To be called before the frame's first LookAtPolygon.
void BeginPolygonViews();

// Starts to fetch from memory what drawing a polygon reads.
inline void PrefetchPolygon(uint32_t polygon) {
    __builtin_prefetch(&PolygonLanes.cornerGroups[PolygonLanes.firstGroup[polygon]]);
    __builtin_prefetch(WorldGeometry.polyVertices + WorldGeometry.polygons[polygon].firstVertex);
}

void LookAtPolygon(uint32_t polygon, PolygonView& view);

// The same of the eight corners of a box that is a little larger. Where they are all seen, so is all inside the box.
void LookAtBox(const CornerBox& box, PolygonView& view);

// Sets screen, without its intensities, and bounds. False: a corner is so far from the frame that neither holds.
bool ProjectView(PolygonView& view);

// Works out the intensities of view.screen.
void ShadeView(uint32_t polygon, PolygonView& view);

// Writes the corners into WorldGeometry.viewPoints and outcodes, for the steps that follow.
void StoreView(const PolyRecord& polygon, const PolygonView& view);
