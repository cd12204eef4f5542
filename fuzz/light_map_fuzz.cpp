// The file lights.lmp of a small world.
#include "support/game_file.h"
#include "support/small_world.h"
#include "world/light_map.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    PublishSmallWorld();
    try {
        LoadLightMap(BeginGameFile(data, size));
    } catch (const FatalThrown&) {
        return 0;
    }
    ApplyLightLevel();
    ShadePolygon(0);
    WorldGeometry.polygons[0].shading ^= SHADE_CORNER_LIGHT ^ SHADE_POINT_LIGHT;
    ShadePolygon(0);
    return 0;
}
