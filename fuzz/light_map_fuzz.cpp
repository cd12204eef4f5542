// lights.lmp of a small world.
#include "support/game_file.h"
#include "support/tiny_world.h"
#include "world/light_map.h"

namespace {

TinyWorld world;

void PublishWorld() {
    if (WorldGeometry.nodes != nullptr) return;
    world.AddLeaf({FacingSquare({0, 0, 100}, {0, 0, -1}, 10)});
    world.Publish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    PublishWorld();
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
