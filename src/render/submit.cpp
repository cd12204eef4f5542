#include "render/submit.h"

#include "host/glide.h"
#include "render/device/device.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "world/world_tables.h"

#include <algorithm>

uint32_t SubmittedPolygons;

namespace {

constexpr int CORNERS_MAX = 16;
constexpr float NEUTRAL_LEVEL_SCALE = 256.0f / NEUTRAL_LEVEL;  // the neutral light level leaves the texture as it is

uint32_t CurrentTexture = NO_TEXTURE;

// Rounds to 1/16: a sum with so large a number has no bits for anything finer.
float SnapToSixteenth(float value) {
    return (value + 524288.0f) - 524288.0f;
}

// Above the neutral level the colour stays full, and alpha adds light of its own.
void SetLight(float intensity, GrVertex& vertex) {
    float level = intensity * 0.00390625f;
    if ((LightMode & INVERTED_LIGHT) != 0) level = BRIGHTEST_LEVEL - level;
    const float colour = level * NEUTRAL_LEVEL_SCALE;
    vertex.r = vertex.g = vertex.b = std::min(colour, 255.0f);
    vertex.a = std::max(colour - 256.0f, 0.0f);
}

GrVertex MakeVertex(const PolyVertex& corner) {
    const ViewPoint& point = WorldGeometry.viewPoints[corner.point];
    GrVertex vertex{};
    SetLight(corner.intensity, vertex);
    vertex.x = SnapToSixteenth(point.screen.pixels.x);
    vertex.y = SnapToSixteenth(point.screen.pixels.y);
    vertex.oow = point.inverseDepth;
    vertex.tmuvtx[0].sow = point.inverseDepth * corner.u;
    vertex.tmuvtx[0].tow = point.inverseDepth * corner.v;
    return vertex;
}

void UseTextureOf(const PolyRecord& polygon) {
    const uint32_t texture = RemappedTexture(polygon.texture);
    if (texture != CurrentTexture) {
        CurrentTexture = texture;
        guTexSource(TextureHandles[texture]);
    }
    const bool wraps = (polygon.flags & POLY_WRAPS) != 0;
    const GrTextureClampMode_t mode = wraps ? GR_TEXTURECLAMP_WRAP : GR_TEXTURECLAMP_CLAMP;
    grTexClampMode(GR_TMU0, mode, mode);
}

void SubmitToGlide(const PolyRecord& polygon) {
    GrVertex vertices[CORNERS_MAX];
    const int count = std::min<int>(polygon.cornerCount, CORNERS_MAX);
    for (int i = 0; i < count; ++i)
        vertices[i] = MakeVertex(WorldGeometry.polyVertices[polygon.firstVertex + i]);
    UseTextureOf(polygon);
    for (int i = 1; i + 1 < count; ++i)
        grDrawTriangle(&vertices[0], &vertices[i], &vertices[i + 1]);
}

}  // namespace

void SubmitPolygon(const PolyRecord* polygon, uint32_t drawFlags) {
    SubmittedPolygons++;
    if (GlideActive()) {
        SubmitToGlide(*polygon);
        return;
    }
    const TextureRecord* texture = PolygonTexture(*polygon);
    if (texture == nullptr) return;
    if (texture->isTransparent == 1 || (drawFlags & DRAW_TRANSPARENT) != 0)
        RasterPolygonTransparent(polygon);
    else
        RasterPolygon(polygon);
}

void SubmitCorners(const PolyRecord& polygon, const ScreenCorners* corners) {
    SubmittedPolygons++;
    const TextureRecord* texture = PolygonTexture(polygon);
    if (texture != nullptr && texture->isEmpty == 0) RasterCorners(polygon, corners, *texture);
}

void ResetCurrentTexture() {
    CurrentTexture = NO_TEXTURE;
}
