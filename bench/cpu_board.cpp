// The cpu board: three layers over the whole screen in large and in small triangles, with everything a world takes:
// bilinear texture with mip levels, colour, alpha test, depth, fog. Beside them the scalar way, and triangles that
// cover no pixel.
#include "boards/cpu/cpu_board.h"
#include "boards/boards.h"
#include "host/glide.h"
#include "rounds.h"

#include <cstdlib>
#include <vector>

namespace {

constexpr int ROUNDS = 15;
constexpr int LAYERS = 3;
constexpr float NEAREST_W = 2000;

void OpenScreen() {
    CurrentBoard = &CpuBoard;
    CpuBoardThreads = 1;  // the rounds measure this thread's time
    if (!grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB, GR_ORIGIN_UPPER_LEFT, 2, 1))
        std::abort();
    grColorCombine(GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED,
                   GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    grAlphaTestFunction(GR_CMP_EQUAL);
    grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
    grDepthMask(FXTRUE);
    grCullMode(GR_CULL_POSITIVE);
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, NEAREST_W / 2, 60000);
    grFogTable(table);
    grFogMode(GR_FOG_WITH_TABLE);
    const GrMipMapId_t texture =
        guTexAllocateMemory(GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, 256, 256, GR_TEXFMT_ARGB_1555, GR_MIPMAP_NEAREST,
                            GR_LOD_1, GR_LOD_256, GR_ASPECT_1x1, GR_TEXTURECLAMP_WRAP, GR_TEXTURECLAMP_WRAP,
                            GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    std::vector<uint16_t> texels(256 * 256 * 2);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = static_cast<uint16_t>(i * 40503 >> 3 & 0x7FFF);
    guTexDownloadMipMap(texture, texels.data(), nullptr);
    guTexSource(texture);
}

GrVertex Vertex(float x, float y, float w) {
    const float oow = 1 / w;
    return {x, y, oow, 200, 180, x / 3, y / 5, {{x * oow, y * oow}}};
}

// Of columns x rows quads.
void DrawLayer(int columns, int rows, float w) {
    const auto at = [&](int column, int row) {
        return Vertex(static_cast<float>(640 * 16 * column / columns) / 16,
                      static_cast<float>(480 * 16 * row / rows) / 16, w + static_cast<float>(row + column));
    };
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const GrVertex corners[4] = {at(column, row), at(column, row + 1), at(column + 1, row + 1),
                                         at(column + 1, row)};
            grDrawTriangle(&corners[0], &corners[1], &corners[2]);
            grDrawTriangle(&corners[0], &corners[2], &corners[3]);
        }
    }
}

void DrawLayers(int columns, int rows, bool nearFirst, bool fast) {
    CpuBoardUsesAvx2 = fast && CpuBoardHasAvx2();
    grBufferClear(0, 0, 0xFFFF);
    for (int i = 0; i < LAYERS; ++i)
        DrawLayer(columns, rows, NEAREST_W * static_cast<float>(nearFirst ? i + 1 : LAYERS - i));
    grSstIdle();
}

// Between the centres of pixels.
void DrawDots(int count) {
    const GrVertex corners[3] = {Vertex(100.625F, 100.625F, 100), Vertex(100.625F, 101.25F, 100),
                                 Vertex(101.25F, 101.25F, 100)};
    for (int i = 0; i < count; ++i)
        grDrawTriangle(&corners[0], &corners[1], &corners[2]);
    grSstIdle();
}

}  // namespace

int main() {
    OpenScreen();
    constexpr double PIXELS = 640.0 * 480 * LAYERS;
    Rounds rounds;
    const size_t scalar =
        rounds.Add("2,016 triangles, scalar: a pixel", PIXELS, [] { DrawLayers(21, 16, false, false); });
    const size_t works[] = {
        rounds.Add("2,016 triangles, all drawn: a pixel", PIXELS, [] { DrawLayers(21, 16, false, true); }),
        rounds.Add("2,016 triangles, one layer seen: a pixel", PIXELS, [] { DrawLayers(21, 16, true, true); }),
        rounds.Add("20,100 triangles, all drawn: a pixel", PIXELS, [] { DrawLayers(67, 50, false, true); }),
        rounds.Add("20,100 triangles, one layer seen: a pixel", PIXELS, [] { DrawLayers(67, 50, true, true); }),
    };
    const size_t dots = rounds.Add("a triangle without a pixel", 1000, [] { DrawDots(1000); });
    rounds.Run(ROUNDS);
    rounds.Print(scalar);
    for (const size_t work : works)
        rounds.PrintAgainst(work, scalar);
    rounds.Print(dots);
    return 0;
}
