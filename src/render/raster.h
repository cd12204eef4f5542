// The software rasteriser: edge table, then perspective-correct spans subdivided every 16 pixels.
#pragma once

#include "records/world_records.h"

void BuildReciprocalTable();
bool BuildEdgeTable(const PolyRecord* polygon);  // false: no scanline is covered
void RasterPolygon(const PolyRecord* polygon);
void RasterPolygonTransparent(const PolyRecord* polygon);  // texel 0 leaves the frame as it is
