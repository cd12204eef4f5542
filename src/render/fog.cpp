#include "render/fog.h"

#include "memory/fatal.h"
#include "memory/pool.h"
#include "render/render_tables.h"

namespace {

constexpr uint32_t OFFSCREEN_FRAME_BYTES = 1048576;

}  // namespace

void SetupFog() {
    for (int i = 0; i < 128; i++)
        IntensityTable[i] = static_cast<float>(i * 256);
    FrameBuffer = static_cast<uint8_t*>(PoolMalloc(OFFSCREEN_FRAME_BYTES));
    if (FrameBuffer == nullptr) FatalError(1, "No memory for the off-screen frame");
}

// Comes with the accelerator.
void ReloadFogTable() {}
