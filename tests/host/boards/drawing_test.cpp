// What the game never asks of a board, what is read back, and that all boards draw alike. What the game shows is tested
// by the golden pictures.
#include "board_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr uint16_t WHITE = 0x7FFF;

class Drawing : public BoardTest, public testing::WithParamInterface<const Board*> {
protected:
    const Board* TheBoard() override { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Boards, Drawing, testing::Values(&CpuBoard, &GpuBoard),
                         [](const auto& row) { return std::string(row.param->name); });

TEST_P(Drawing, TrianglesWithoutAreaOrOfNoNumbersAreNotDrawn) {
    MakePlain(WHITE);
    const GrVertex a = Vertex(10, 10), b = Vertex(10, 40);
    const auto pixels = [&](const GrVertex& last) {
        grDrawTriangle(&a, &b, &last);
        return SwapAndClear().Count();
    };
    grCullMode(GR_CULL_DISABLE);
    EXPECT_EQ(pixels(Vertex(10, 70)), 0);
    EXPECT_EQ(pixels(Vertex(3000, 10)), 0);
    EXPECT_EQ(pixels(Vertex(40, NAN)), 0);
    GrVertex endless = Vertex(40, 40);
    EXPECT_GT(pixels(endless), 400);
    endless.oow = INFINITY;
    EXPECT_EQ(pixels(endless), 0);
}

TEST_P(Drawing, TheReadBackIsThePictureLastSwapped) {
    grBufferClear(0x00FF8410, 0, 0xFFFF);
    Swap();
    grBufferClear(0x00FFFFFF, 0, 0xFFFF);
    GrLfbInfo_t info{};
    EXPECT_FALSE(
        grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE, &info));
    info.size = sizeof info;
    ASSERT_TRUE(
        grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE, &info));
    const auto* lastRow = static_cast<const uint8_t*>(info.lfbPtr) + 479 * info.strideInBytes;
    EXPECT_EQ(lastRow[2 * 639] | lastRow[2 * 639 + 1] << 8, 31 << 11 | 33 << 5 | 2);
    EXPECT_TRUE(grLfbUnlock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER));
    grSstWinClose();
    EXPECT_EQ(FrontPicture()->pixels[0], 0xFF8410U) << "the last picture stays on the screen";
    EXPECT_FALSE(
        grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE, &info));
    MakePlain(WHITE);
    DrawQuad(0, 0, 10, 10);
    grBufferSwap(1);
    EXPECT_EQ(FrontPicture()->pixels[0], 0xFF8410U) << "without a screen nothing is drawn";
}

// Triangles of all sizes and directions, through every state.
class Boards : public BoardTest {
protected:
    static std::vector<uint32_t> DrawEverything() {
        std::mt19937 random(3);
        const auto number = [&](float least, float most) {
            return least + (most - least) * static_cast<float>(random() % 65536) / 65536;
        };
        GrFog_t table[GR_FOG_TABLE_SIZE];
        for (GrFog_t& entry : table)
            entry = static_cast<GrFog_t>(random());
        grFogTable(table);
        grFogColorValue(0x00A0C0FF);
        grCullMode(GR_CULL_DISABLE);
        for (const GrAspectRatio_t aspect : {GR_ASPECT_1x1, GR_ASPECT_8x1, GR_ASPECT_1x4})
            MakeTexture(GR_TEXFMT_ARGB_4444, GR_LOD_256, GR_LOD_1, aspect,
                        [&](auto...) { return static_cast<uint16_t>(random() & (random() % 4 ? 0xFFF : 0xFFFF)); });
        for (int i = 0; i < 600; ++i) {
            const float spread = number(0, 1) * number(0, 1) * 300;
            const float x = number(-50, 690);
            const float y = number(-50, 530);
            guTexSource(static_cast<GrMipMapId_t>(random() % 3));
            const auto clamp = static_cast<GrTextureClampMode_t>(random() % 2);
            grTexClampMode(GR_TMU0, clamp, static_cast<GrTextureClampMode_t>(random() % 2));
            grFogMode(static_cast<GrFogMode_t>(random() % 2));
            grDepthMask(static_cast<FxBool>(random() % 2));
            grDepthBufferFunction(random() % 8 ? GR_CMP_LESS : GR_CMP_ALWAYS);
            grAlphaTestFunction(random() % 2 ? GR_CMP_EQUAL : GR_CMP_ALWAYS);
            std::vector<GrVertex> corners;
            for (int k = 0; k < 3; ++k) {
                const float range = random() % 4 ? 300.0f : 70000.0f;
                corners.push_back(Vertex(x + number(-spread, spread), y + number(-spread, spread), number(0.5f, range),
                                         number(-600, 900), number(-600, 900)));
                corners[static_cast<size_t>(k)].r = number(-20, 280);
                corners[static_cast<size_t>(k)].g = number(0, 255);
                corners[static_cast<size_t>(k)].a = number(-200, 255);
                if (random() % 16 == 0) corners[static_cast<size_t>(k)].oow = number(-1, 0);
            }
            DrawFan(corners);
            if (i % 20 == 0) grDrawLine(&corners[0], &corners[1]);
        }
        const Shown shown = Swap();
        return std::vector<uint32_t>(shown.picture->pixels, shown.picture->pixels + 640 * 480);
    }

    // Pixels of which a channel differs by more than `steps`.
    static size_t Differing(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int steps) {
        size_t count = 0;
        for (size_t i = 0; i < a.size(); ++i) {
            const auto differs = [&](int shift) {
                return std::abs(static_cast<int>(a[i] >> shift & 0xFF) - static_cast<int>(b[i] >> shift & 0xFF)) >
                       steps;
            };
            count += differs(16) || differs(8) || differs(0);
        }
        return count;
    }
};

TEST_F(Boards, TheFastWayAndSeveralThreadsGiveTheSameBytes) {
    CpuBoardUsesAvx2 = false;
    CpuBoardThreads = 1;
    TearDown();
    SetUp();
    const std::vector<uint32_t> portable = DrawEverything();
    CpuBoardUsesAvx2 = CpuBoardHasAvx2();
    CpuBoardThreads = 3;
    TearDown();
    SetUp();
    const std::vector<uint32_t> fast = DrawEverything();
    EXPECT_EQ(Differing(fast, portable, 0), 0U);
    EXPECT_GT(std::count_if(fast.begin(), fast.end(), [](uint32_t pixel) { return pixel != 0; }), 100000);
}

class GpuBoardPictures : public Boards {
protected:
    const Board* TheBoard() override { return board; }
    void Reopen(const Board* other, uint32_t scale) {
        TearDown();
        board = other;
        BoardScale = scale;
        SetUp();
    }
    void TearDown() override {
        Boards::TearDown();
        BoardScale = 1;
    }
    const Board* board = &GpuBoard;
};

TEST_F(GpuBoardPictures, AreThoseOfTheCpuBoardButForRounding) {
    const std::vector<uint32_t> gpu = DrawEverything();
    Reopen(&CpuBoard, 1);
    const std::vector<uint32_t> cpu = DrawEverything();
    EXPECT_LT(Differing(gpu, cpu, 2), gpu.size() / 500) << "where an edge, a hole or a mip level begins";
}

TEST_F(GpuBoardPictures, AreReadBackAtTheirUsualSizeWhateverTheScale) {
    Reopen(&GpuBoard, 3);
    MakePlain(WHITE);
    DrawQuad(10.5f, 20.5f, 14.5f, 24.5f);
    const Shown shown = Swap();
    EXPECT_EQ(shown.picture->width, 3 * 640);
    EXPECT_EQ(shown.Count(), 9 * 16);
    GrLfbInfo_t info{};
    info.size = sizeof info;
    ASSERT_TRUE(
        grLfbLock(GR_LFB_READ_ONLY, GR_BUFFER_FRONTBUFFER, GR_LFBWRITEMODE_ANY, GR_ORIGIN_UPPER_LEFT, FXTRUE, &info));
    const auto* row =
        reinterpret_cast<const uint16_t*>(static_cast<const uint8_t*>(info.lfbPtr) + 22 * info.strideInBytes);
    EXPECT_EQ(row[9], 0);
    EXPECT_EQ(row[10] >> 11, 255 * 6 / 9 >> 3) << "a third of it is not covered";
    EXPECT_EQ(row[12], 0xFFFF);
    const uint32_t first = FrontPicture()->pixels[0];
    grSstWinClose();
    EXPECT_EQ(FrontPicture()->pixels[0], first);
}

}  // namespace
