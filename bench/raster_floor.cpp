#include "raster_floor.h"

#include "render/render_tables.h"

namespace raster_floor {
namespace {

[[gnu::noinline]] void FloorSpan(uint8_t* pixels, int count, const uint8_t* texels, uint32_t u, uint32_t v,
                                 uint32_t light) {
    const uint8_t* const shade = ShadeTable;
    for (; count > 0; count -= 8, pixels += 8) {
#pragma GCC unroll 8
        for (int i = 0; i < 8; ++i) {
            pixels[i] = shade[(light & 0xff00) | texels[((v & 0xff00) | ((u >> 8) & 0xff)) & MASK]];
            u += U_STEP;
            v += V_STEP;
            light += LIGHT_STEP;
        }
    }
}

}  // namespace

void FloorFrame(const uint8_t* texels, int span) {
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; x += span) {
            const uint32_t start = static_cast<uint32_t>(y * 77 + x);
            FloorSpan(FrameBuffer + y * WIDTH + x, span, texels, start * 5, start * 3, start & 0x1fff);
        }
    }
}

}  // namespace raster_floor
