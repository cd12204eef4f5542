// The cpu board against OpenGL in software, on one thread and on two. Both draw a bilinear texture with colour, depth
// test and fog; the board's texture has mip levels besides. The board's time counts from the calls of the game to the
// last pixel, that of its peer from one draw call of vertices that it already holds. Three more rows show what added
// light and holes cost, the fill without vector instructions, and triangles that cover no pixel.
#include "boards/cpu/cpu_board.h"
#include "board_scene.h"
#include "cpu_board_peer.h"
#include "rounds.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int ROUNDS = 15;
constexpr float FOG_NEAR = 1000;
constexpr float FOG_FAR = 60000;
constexpr double TARGET = 1;  // most time, in times of the peer's

std::vector<PeerVertex> ToPeer(const std::vector<GrVertex>& vertices) {
    std::vector<PeerVertex> same;
    for (const auto& [x, y, oow, r, g, b, a, unit] : vertices) {
        const auto byte = [](float channel) { return static_cast<uint8_t>(channel); };
        same.push_back({x, y, 1 / oow, unit[0].sow / oow, unit[0].tow / oow, {byte(r), byte(g), byte(b), 255}});
    }
    return same;
}

// The state in which a world is drawn: with added light and holes.
void SetWorldState(bool on) {
    grColorCombine(on ? GR_COMBINE_FUNCTION_SCALE_OTHER_ADD_LOCAL_ALPHA : GR_COMBINE_FUNCTION_SCALE_OTHER,
                   GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED, GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    grAlphaTestFunction(on ? GR_CMP_EQUAL : GR_CMP_ALWAYS);
}

void DrawScene(const std::vector<GrVertex>& vertices, bool asWorld, bool fast) {
    CpuBoardUsesAvx2 = fast && CpuBoardHasAvx2();
    SetWorldState(asWorld);
    grBufferClear(0, 0, 0xFFFF);
    DrawWithBoard(vertices);
}

void OpenCpuBoard(unsigned threads) {
    CpuBoardThreads = threads;
    OpenBoard(CpuBoard, GR_LOD_1, FOG_NEAR, FOG_FAR);
}

void CompareWithPeer(unsigned threads) {
    OpenCpuBoard(threads);
    const bool hasPeer = OpenPeer(threads == 1 ? 0 : static_cast<int>(threads), OpenGlTexels(), FOG_NEAR, FOG_FAR);
    std::printf("%u thread%s, a pixel; the peer: %s\n", threads, threads == 1 ? "" : "s",
                hasPeer ? PeerName() : "none, there is no OpenGL in software here");
    Rounds rounds(threads == 1 ? Rounds::Clock::Thread : Rounds::Clock::Wall);
    for (const Scene& scene : SCENES) {
        const std::vector<GrVertex> vertices = Triangles(scene);
        rounds.Add(scene.name, PIXELS, [=] { DrawScene(vertices, false, true); });
        if (!hasPeer) continue;
        const size_t number = AddPeerScene(ToPeer(vertices));
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
    OpenCpuBoard(1);
    const std::vector<GrVertex> vertices = Triangles(SCENES[0]);
    // The triangles cross a row's centre line, but between the centres of its pixels.
    const auto dot = [](float x, float y) { return GrVertex{x, y, 0.01f, 255, 255, 255, 16, {{0, 0}}}; };
    std::vector<GrVertex> dots;
    for (int i = 0; i < 1000; ++i)
        for (const GrVertex& corner : {dot(100.625f, 100.25f), dot(100.625f, 101.25f), dot(101.25f, 101.25f)})
            dots.push_back(corner);
    Rounds rounds;
    const size_t works[] = {
        rounds.Add("  one thread, a pixel", PIXELS, [=] { DrawScene(vertices, false, true); }),
        rounds.Add("  with added light and holes", PIXELS, [=] { DrawScene(vertices, true, true); }),
        rounds.Add("  the scalar way", PIXELS, [=] { DrawScene(vertices, true, false); }),
    };
    CpuBoardUsesAvx2 = CpuBoardHasAvx2();
    const size_t setUp = rounds.Add("a triangle without a pixel (target: 300 ns)", 1000, [=] { DrawWithBoard(dots); });
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
