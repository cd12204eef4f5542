#include "board_scene.h"

#include "backends/headless/headless.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr float NEAREST_W = 2000;

void LoadTexture(GrLOD_t smallestLod) {
    const GrMipMapId_t texture =
        guTexAllocateMemory(GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, TEXTURE_SIDE, TEXTURE_SIDE, GR_TEXFMT_ARGB_1555,
                            GR_MIPMAP_NEAREST, smallestLod, GR_LOD_256, GR_ASPECT_1x1, GR_TEXTURECLAMP_WRAP,
                            GR_TEXTURECLAMP_WRAP, GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    std::vector<uint16_t> texels(TEXTURE_SIDE * TEXTURE_SIDE * 2);  // enough for all levels
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = Texel(i);
    guTexDownloadMipMap(texture, texels.data(), nullptr);
    guTexSource(texture);
}

}  // namespace

std::vector<GrVertex> Triangles(const Scene& scene) {
    std::vector<GrVertex> vertices;
    for (int layer = 0; layer < LAYERS; ++layer) {
        const float layerW = NEAREST_W * static_cast<float>(scene.nearFirst ? layer + 1 : LAYERS - layer);
        const auto at = [&](int column, int row) {
            const float x = static_cast<float>(640 * 16 * column / scene.columns) / 16;
            const float y = static_cast<float>(480 * 16 * row / scene.rows) / 16;
            const float oow = 1 / (layerW + static_cast<float>(row + column));
            return GrVertex{x, y, oow, 200, 180, x / 3, 16, {{x * oow, y * oow}}};
        };
        for (int row = 0; row < scene.rows; ++row)
            for (int column = 0; column < scene.columns; ++column) {
                const GrVertex a = at(column, row), c = at(column + 1, row + 1);
                vertices.insert(vertices.end(), {a, at(column, row + 1), c, a, c, at(column + 1, row)});
            }
    }
    return vertices;
}

uint16_t Texel(size_t i) {
    return static_cast<uint16_t>(i * 40503 >> 3 & 0x7FFF);
}

std::vector<uint32_t> OpenGlTexels() {
    std::vector<uint32_t> texels(TEXTURE_SIDE * TEXTURE_SIDE);
    for (size_t i = 0; i < texels.size(); ++i) {
        const uint32_t texel = Texel(i);
        texels[i] = 0xFF000000 | (texel & 0x7C00) << 9 | (texel & 0x3E0) << 6 | (texel & 0x1F) << 3;
    }
    return texels;
}

void OpenBoard(const Board& board, GrLOD_t smallestLod, float fogNear, float fogFar) {
    CurrentMachine = &HeadlessMachine;
    CurrentBoard = &board;
    if (!grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB, GR_ORIGIN_UPPER_LEFT, 2,
                      1)) {
        std::fprintf(stderr, "the %s board cannot be had\n", board.name);
        std::exit(EXIT_FAILURE);
    }
    grColorCombine(GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED,
                   GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    grAlphaTestFunction(GR_CMP_EQUAL);
    grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
    grDepthMask(FXTRUE);
    grCullMode(GR_CULL_POSITIVE);
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, fogNear, fogFar);
    grFogTable(table);
    grFogColorValue(0x0099B2CC);
    grFogMode(GR_FOG_WITH_TABLE);
    LoadTexture(smallestLod);
}

void DrawWithBoard(const std::vector<GrVertex>& vertices) {
    for (size_t i = 0; i < vertices.size(); i += 3)
        grDrawTriangle(&vertices[i], &vertices[i + 1], &vertices[i + 2]);
    grSstIdle();
}
