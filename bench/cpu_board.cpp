// The cpu board against OpenGL in software, on one thread and on two: three layers over the whole screen in large and
// in small triangles, far to near (every pixel is drawn) and near to far (one layer is). Both draw a bilinear texture
// with colour, depth test and fog; the board's has mip levels besides. What the board takes counts from the calls of
// the game to the last pixel, what its peer takes from one draw call of vertices that it holds already. Beside them
// what a world adds, the scalar way, and triangles that cover no pixel.
#include "boards/cpu/cpu_board.h"
#include "boards/boards.h"
#include "cpu_board_peer.h"
#include "host/glide.h"
#include "rounds.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int ROUNDS = 15;
constexpr int LAYERS = 3;
constexpr float NEAREST_W = 2000;
constexpr float FOG_NEAR = 1000;
constexpr float FOG_FAR = 60000;
constexpr double PIXELS = 640.0 * 480 * LAYERS;
constexpr double TARGET = 1;  // times the peer

struct Scene {
    const char* name;
    int columns, rows;  // of quads in a layer
    bool nearFirst;
};
constexpr Scene SCENES[] = {{" 2,016 triangles, all drawn", 21, 16, false},
                            {" 2,016 triangles, one layer seen", 21, 16, true},
                            {"20,100 triangles, all drawn", 67, 50, false},
                            {"20,100 triangles, one layer seen", 67, 50, true}};

uint16_t Texel(size_t i) {
    return static_cast<uint16_t>(i * 40503 >> 3 & 0x7FFF);
}

// Three vertices a triangle, counter-clockwise.
std::vector<PeerVertex> Triangles(const Scene& scene) {
    std::vector<PeerVertex> vertices;
    for (int layer = 0; layer < LAYERS; ++layer) {
        const float layerW = NEAREST_W * static_cast<float>(scene.nearFirst ? layer + 1 : LAYERS - layer);
        const auto at = [&](int column, int row) {
            const float x = static_cast<float>(640 * 16 * column / scene.columns) / 16;
            const float y = static_cast<float>(480 * 16 * row / scene.rows) / 16;
            const auto blue = static_cast<uint8_t>(x / 3);
            return PeerVertex{x, y, layerW + static_cast<float>(row + column), x, y, {200, 180, blue, 255}};
        };
        for (int row = 0; row < scene.rows; ++row)
            for (int column = 0; column < scene.columns; ++column) {
                const PeerVertex corners[4] = {at(column, row), at(column, row + 1), at(column + 1, row + 1),
                                               at(column + 1, row)};
                for (const int corner : {0, 1, 2, 0, 2, 3})
                    vertices.push_back(corners[corner]);
            }
    }
    return vertices;
}

GrVertex ToGlide(const PeerVertex& vertex) {
    const float oow = 1 / vertex.w;
    const auto& [r, g, b, a] = vertex.colour;
    return {vertex.x,
            vertex.y,
            oow,
            static_cast<float>(r),
            static_cast<float>(g),
            static_cast<float>(b),
            16,
            {{vertex.s * oow, vertex.t * oow}}};
}

void LoadTexture() {
    const GrMipMapId_t texture =
        guTexAllocateMemory(GR_TMU0, GR_MIPMAPLEVELMASK_BOTH, 256, 256, GR_TEXFMT_ARGB_1555, GR_MIPMAP_NEAREST,
                            GR_LOD_1, GR_LOD_256, GR_ASPECT_1x1, GR_TEXTURECLAMP_WRAP, GR_TEXTURECLAMP_WRAP,
                            GR_TEXTUREFILTER_BILINEAR, GR_TEXTUREFILTER_BILINEAR, 0, FXFALSE);
    std::vector<uint16_t> texels(256 * 256 * 2);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = Texel(i);
    guTexDownloadMipMap(texture, texels.data(), nullptr);
    guTexSource(texture);
}

void OpenBoard(unsigned threads) {
    CurrentBoard = &CpuBoard;
    CpuBoardThreads = threads;
    if (!grSstWinOpen(nullptr, GR_RESOLUTION_640x480, GR_REFRESH_60Hz, GR_COLORFORMAT_ARGB, GR_ORIGIN_UPPER_LEFT, 2, 1))
        std::abort();
    grDepthBufferMode(GR_DEPTHBUFFER_WBUFFER);
    grDepthMask(FXTRUE);
    grCullMode(GR_CULL_POSITIVE);
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, FOG_NEAR, FOG_FAR);
    grFogTable(table);
    grFogColorValue(0x0099B2CC);
    grFogMode(GR_FOG_WITH_TABLE);
    LoadTexture();
}

// As a world is drawn: with added light and holes.
void SetWorldState(bool on) {
    grColorCombine(on ? GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA : GR_COMBINE_FUNCTION_SCALE_OTHER,
                   GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED, GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    grAlphaTestFunction(on ? GR_CMP_EQUAL : GR_CMP_ALWAYS);
}

void DrawTriangles(const std::vector<GrVertex>& vertices) {
    for (size_t i = 0; i < vertices.size(); i += 3)
        grDrawTriangle(&vertices[i], &vertices[i + 1], &vertices[i + 2]);
    grSstIdle();
}

void DrawScene(const std::vector<GrVertex>& vertices, bool asWorld, bool fast) {
    CpuBoardUsesAvx2 = fast && CpuBoardHasAvx2();
    SetWorldState(asWorld);
    grBufferClear(0, 0, 0xFFFF);
    DrawTriangles(vertices);
}

bool OpenPeerWithTexture(int threads) {
    std::vector<uint32_t> texels(PEER_TEXTURE_SIDE * PEER_TEXTURE_SIDE);
    for (size_t i = 0; i < texels.size(); ++i) {
        const uint32_t texel = Texel(i);
        texels[i] = 0xFF000000 | (texel & 0x7C00) << 9 | (texel & 0x3E0) << 6 | (texel & 0x1F) << 3;
    }
    return OpenPeer(threads, texels, FOG_NEAR, FOG_FAR);
}

void CompareWithPeer(unsigned threads) {
    OpenBoard(threads);
    const bool hasPeer = OpenPeerWithTexture(threads == 1 ? 0 : static_cast<int>(threads));
    std::printf("%u thread%s, a pixel; the peer: %s\n", threads, threads == 1 ? "" : "s",
                hasPeer ? PeerName() : "none, there is no OpenGL in software here");
    Rounds rounds(threads == 1 ? Rounds::Clock::Thread : Rounds::Clock::Wall);
    for (const Scene& scene : SCENES) {
        const std::vector<PeerVertex> triangles = Triangles(scene);
        std::vector<GrVertex> vertices;
        for (const PeerVertex& vertex : triangles)
            vertices.push_back(ToGlide(vertex));
        rounds.Add(scene.name, PIXELS, [=] { DrawScene(vertices, false, true); });
        if (!hasPeer) continue;
        const size_t number = AddPeerScene(triangles);
        rounds.Add("the peer", PIXELS, [=] { DrawPeerScene(number); });
    }
    rounds.Run(ROUNDS);
    for (size_t i = 0; i < std::size(SCENES); ++i) {
        if (hasPeer) {
            rounds.Print(2 * i + 1);
            rounds.PrintAgainst(2 * i, 2 * i + 1, TARGET);
        } else {
            rounds.Print(i);
        }
    }
    if (hasPeer) ClosePeer();
}

void MeasureParts() {
    OpenBoard(1);
    std::vector<GrVertex> vertices;
    for (const PeerVertex& vertex : Triangles(SCENES[0]))
        vertices.push_back(ToGlide(vertex));
    // Over a row's centre line, but between the centres of its pixels.
    const auto dot = [](float x, float y) { return ToGlide({x, y, 100, 0, 0, {255, 255, 255, 255}}); };
    std::vector<GrVertex> dots;
    for (int i = 0; i < 1000; ++i)
        for (const GrVertex& corner : {dot(100.625F, 100.25F), dot(100.625F, 101.25F), dot(101.25F, 101.25F)})
            dots.push_back(corner);
    Rounds rounds;
    const size_t works[] = {
        rounds.Add("  one thread, a pixel", PIXELS, [=] { DrawScene(vertices, false, true); }),
        rounds.Add("  with added light and holes", PIXELS, [=] { DrawScene(vertices, true, true); }),
        rounds.Add("  the scalar way", PIXELS, [=] { DrawScene(vertices, true, false); }),
    };
    CpuBoardUsesAvx2 = CpuBoardHasAvx2();
    const size_t setUp = rounds.Add("a triangle without a pixel (target: 300 ns)", 1000, [=] { DrawTriangles(dots); });
    rounds.Run(ROUNDS);
    for (const size_t work : works)
        rounds.PrintAgainst(work, works[0]);
    rounds.Print(setUp);
}

}  // namespace

int main() {
    CompareWithPeer(1);
    CompareWithPeer(2);
    MeasureParts();
    return 0;
}
