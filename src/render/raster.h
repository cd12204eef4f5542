// The software rasteriser: edge table, then perspective-correct spans subdivided every 16 pixels.
//
// Points that run counter-clockwise on the screen (rows growing downwards) are filled, the other winding leaves
// nothing. Rows and columns outside the frame are skipped, whatever the input. All conversions to integers round to
// the nearest, ties to even; integer steps wrap.
#pragma once

#include "records/world_records.h"

void BuildReciprocalTable();                     // once a game, before anything is drawn
bool BuildEdgeTable(const PolyRecord* polygon);  // false: no row of the frame is covered
void RasterPolygon(const PolyRecord* polygon);
void RasterPolygonTransparent(const PolyRecord* polygon);  // texel 0 leaves the frame as it is

// Polygons that come back to front between these two calls are kept, and drawn by the second front to back, each only
// where none before it has been: the same picture without the work that nobody sees. A polygon's corners are read when
// it comes; frame, textures and shades must stay as they are.
void BeginBackToFront();
void EndBackToFront();
