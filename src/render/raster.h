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
