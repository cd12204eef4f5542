// A texture file, and polygons drawn with whatever textures it declares. The first byte is the number of pages; the
// rest is the file up to the pages, which are added here.
#include "render/raster.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "render/textures.h"
#include "support/throwing_fatal.h"
#include "world/world_tables.h"

#include <algorithm>

// The fade palette cannot fail, and takes too long for a fuzzer.
void BuildFadePalette() {}

namespace {

void DrawWithTexture(uint8_t texture) {
    MakeWorld();
    const int32_t polygon =
        AppendPolygon({{0, 0, 1, -70000, -70000, 0}, {0, 0, 1, 0, 70000, 0}, {0, 0, 1, 70000, 0, 0}});
    WorldGeometry.polygons[polygon].texture = texture;
    const int32_t corners[][2] = {{0, 0}, {10, 40}, {60, 20}};
    for (uint32_t i = 0; i < 3; ++i) {
        const uint32_t vertex = WorldGeometry.polygons[polygon].firstVertex + i;
        ViewPoint& point = WorldGeometry.viewPoints[WorldGeometry.polyVertices[vertex].point];
        point.screen.fixed = {corners[i][0] << 16, corners[i][1] << 16};
        point.inverseDepth = 1;
    }
    RasterPolygon(&WorldGeometry.polygons[polygon]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t bytes) {
    if (bytes == 0) return 0;
    MakeWorld();
    MakeFrame(64, 48, 64);
    BuildReciprocalTable();
    std::vector<uint8_t> file(data + 1, data + bytes);
    file.insert(file.end(), data[0] % 3 * TEXTURE_PAGE_BYTES, 1);
    try {
        LoadTextures(file);
    } catch (const FatalThrown&) {
        return 0;
    }
    for (uint32_t texture = 0; texture < std::min(TextureCount, 4u); ++texture)
        DrawWithTexture(static_cast<uint8_t>(texture));
    return 0;
}
