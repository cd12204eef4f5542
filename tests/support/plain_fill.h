// The polygon fill once more, one pixel after the other and without any thought of speed: what src/render/raster*.cpp
// must give, whichever way they take. Reads WorldGeometry, the textures and the frame like them.
#pragma once

#include "records/world_records.h"

void FillPlainly(const PolyRecord& polygon, bool skipsTexelZero);
