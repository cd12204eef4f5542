// The rasteriser's rules written down a second time, pixel by pixel, with no regard to speed.
#pragma once

#include "records/world_records.h"

#include <cstdint>
#include <vector>

// Draws into rows of ScreenWidth bytes.
void ModelRaster(const PolyRecord& polygon, bool skipsTexelZero, std::vector<uint8_t>& pixels);
