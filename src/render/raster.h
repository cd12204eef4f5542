// The software rasteriser: edge table, then perspective-correct spans subdivided every 16 pixels.
//
// Points that run counter-clockwise on the screen (rows growing downwards) are filled, the other winding leaves
// nothing. Rows and columns outside the frame are skipped, whatever the input. All conversions to integers round to
// the nearest, ties to even; integer steps wrap.
#pragma once

#include "math/lanes.h"
#include "records/texture_records.h"
#include "records/world_records.h"

void BuildReciprocalTable();                     // once a game, before anything is drawn
bool BuildEdgeTable(const PolyRecord* polygon);  // false: no row of the frame is covered
void RasterPolygon(const PolyRecord* polygon);
void RasterPolygonTransparent(const PolyRecord* polygon);  // texel 0 leaves the frame as it is

// Four corners of a polygon on the screen. Where a polygon has fewer left, its first corner stands in the other lanes.
struct ScreenCorners {
    Int4 x, y;            // 16.16 pixels
    Float4 inverseDepth;  // 1 / depth
    Float4 intensity;     // as PolyVertex.intensity
};
constexpr int SCREEN_CORNERS_MAX = 64;  // enough for 255 corners

// Draws a polygon whose corners are not in WorldGeometry.viewPoints; texel 0 of a transparent texture leaves the frame
// as it is.
void RasterCorners(const PolyRecord& polygon, const ScreenCorners* corners, const TextureRecord& texture);

// The software renderer draws a frame from the nearest polygon to the farthest, each only where none before it has
// been: the same picture as the other way round, without the work that nobody sees. Who draws polygons between these
// two calls hands them over in that order; frame and shades must stay as they are, and the frame is complete after the
// second call. False, and nothing has changed: the accelerator draws, or the frame is too large.
bool BeginNearestFirst();
void EndNearestFirst();
bool NearestFirst();  // whether the frame is drawn from the nearest polygon on

// The bounding rectangle of a polygon's projected corners, in 16.16 pixels.
struct ScreenBounds {
    int32_t left, top, right, bottom;
};

// Whether all of a polygon with these bounds lies behind what has been drawn, or outside the frame. To be asked only
// while NearestFirst().
bool IsHidden(const PolyRecord& polygon, const ScreenBounds& bounds);
bool IsHidden(const ScreenBounds& bounds);  // the same of anything else
