// The least work that textured, shaded pixels can take: one texel load, one shade load and one store each, at fixed
// steps.
#pragma once

#include <cstdint>

namespace raster_floor {

constexpr int WIDTH = 320, HEIGHT = 240;
constexpr uint32_t U_STEP = 190, V_STEP = 40, LIGHT_STEP = 24;
constexpr uint32_t MASK = 63 * 256 + 63;

// Fills a whole FrameBuffer of WIDTH x HEIGHT in spans of the given length.
void FloorFrame(const uint8_t* texels, int span);

}  // namespace raster_floor
