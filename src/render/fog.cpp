#include "render/fog.h"

#include "app/app_tables.h"
#include "host/glide.h"
#include "memory/fatal.h"
#include "memory/pool.h"
#include "records/table_facts.h"
#include "records/view_facts.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "world/world_tables.h"

#include <algorithm>
#include <iterator>

namespace {

GrFog_t FogTable[GR_FOG_TABLE_SIZE];

}  // namespace

void SetupFog() {
    for (int i = 0; i < 128; ++i)
        IntensityTable[i] = static_cast<float>(i * 256);
    FrameBuffer = static_cast<uint8_t*>(PoolMalloc(OFFSCREEN_FRAME_BYTES));
    if (FrameBuffer == nullptr) FatalError(1, "No memory for the off-screen frame");
    if (GlideInitialised == 0) return;
    ReloadFogTable();
    SetFogStates();
}

// Kept as it is: the board's table ends before the fade distance, so fog is never more than 39 %.
void LoadFogTable(float nearDistance) {
    if (FarDistance > 0)
        guFogGenerateLinear(FogTable, nearDistance * GLIDE_DEPTH_RANGE / FarDistance,
                            FadeDistance * GLIDE_DEPTH_RANGE / FarDistance);
    else
        std::fill(std::begin(FogTable), std::end(FogTable), GrFog_t{0});
    grFogTable(FogTable);
}

void ReloadFogTable() {
    LoadFogTable(FogNearDistance);
}

void SetFogStates() {
    grFogColorValue(LevelTable[LoadedLevel].fogColour);
    grFogMode(GR_FOG_WITH_TABLE);
}
