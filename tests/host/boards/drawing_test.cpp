// What reaches the picture: coverage, depth, textures, the combine unit and fog.
#include "board_fixture.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr uint16_t WHITE = 0x7FFF;
constexpr uint16_t HOLE = 0xFFFF;

class Drawing : public BoardTest, public testing::WithParamInterface<const Board*> {
protected:
    const Board* TheBoard() override { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Boards, Drawing, testing::Values(&CpuBoard, &GpuBoard),
                         [](const auto& row) { return std::string(row.param->name); });

TEST_P(Drawing, APixelIsDrawnWhereItsCentreLiesInsideOrOnALeftOrUpperEdge) {
    MakePlain(WHITE);
    const struct {
        float left, top, right, bottom;
        int firstX, firstY, endX, endY;
    } rows[] = {{10.5F, 20.5F, 14.5F, 24.5F, 10, 20, 14, 24},
                {10.5625F, 20.5625F, 14.5625F, 24.5625F, 11, 21, 15, 25},
                {-2000, -2000, 2000, 2000, 0, 0, 640, 480},
                {635, 475, 2000, 2000, 635, 475, 640, 480}};
    for (const auto& row : rows) {
        DrawQuad(row.left, row.top, row.right, row.bottom);
        const Shown shown = SwapAndClear();
        EXPECT_EQ(shown.Count(), (row.endX - row.firstX) * (row.endY - row.firstY));
        EXPECT_NE(shown.At(row.firstX, row.firstY), 0U) << row.left;
        EXPECT_NE(shown.At(row.endX - 1, row.endY - 1), 0U) << row.left;
    }
}

TEST_P(Drawing, TrianglesOfAMeshShareNoPixelAndLeaveNoGap) {
    MakePlain(WHITE);
    constexpr int SIDE = 6;
    std::mt19937 random(7);
    GrVertex points[SIDE + 1][SIDE + 1];
    for (int row = 0; row <= SIDE; ++row)
        for (int column = 0; column <= SIDE; ++column) {
            const auto move = [&](int at) {
                return at == 0 || at == SIDE ? 0 : static_cast<float>(random() % 160) / 16 - 5;
            };
            points[row][column] = Vertex(100 + 17.0F * static_cast<float>(column) + move(column),
                                         50 + 17.0F * static_cast<float>(row) + move(row));
        }
    const auto draw = [&](int i) {
        GrVertex* upper = &points[i / 2 / SIDE][i / 2 % SIDE];
        GrVertex* lower = upper + SIDE + 1;
        if (i % 2 == 0)
            grDrawTriangle(upper, lower, lower + 1);
        else
            grDrawTriangle(upper, lower + 1, upper + 1);
    };
    int apart = 0;
    for (int i = 0; i < 2 * SIDE * SIDE; ++i) {
        draw(i);
        apart += SwapAndClear().Count();
    }
    for (int i = 0; i < 2 * SIDE * SIDE; ++i)
        draw(i);
    EXPECT_EQ(Swap().Count(), 17 * SIDE * 17 * SIDE) << "a gap, or something outside";
    EXPECT_EQ(apart, 17 * SIDE * 17 * SIDE) << "a pixel drawn twice";
}

TEST_P(Drawing, CullingRemovesOneWindingAndWhatHasNoArea) {
    MakePlain(WHITE);
    const GrVertex a = Vertex(10, 10), b = Vertex(10, 40), c = Vertex(40, 40), beyond = Vertex(3000, 10);
    const auto pixels = [&](const GrVertex& last, bool clockwise) {
        grDrawTriangle(&a, clockwise ? &last : &b, clockwise ? &b : &last);
        return SwapAndClear().Count();
    };
    EXPECT_GT(pixels(c, false), 400);
    EXPECT_EQ(pixels(c, true), 0);
    grCullMode(GR_CULL_NEGATIVE);
    EXPECT_EQ(pixels(c, false), 0);
    EXPECT_GT(pixels(c, true), 400);
    grCullMode(GR_CULL_DISABLE);
    EXPECT_EQ(pixels(Vertex(10, 70), false), 0);
    EXPECT_EQ(pixels(beyond, false), 0);
    EXPECT_EQ(pixels(Vertex(40, NAN), false), 0);
    GrVertex endless = c;
    endless.oow = INFINITY;
    EXPECT_EQ(pixels(endless, false), 0);
}

// Depth codes, seen through what the depth buffer has been cleared to.
TEST_P(Drawing, DepthIsAFloatingPointNumberOfSixteenBits) {
    MakePlain(WHITE);
    const struct {
        float w;
        uint16_t code;
    } rows[] = {{1.5F, 0x0AAB},     {2, 0x1000},     {3, 0x1AAB},    {100, 0x6B86},
                {52428.8F, 0xFC00}, {63000, 0xFF5C}, {65000, 0xFFDF}};
    for (const auto& row : rows) {
        for (const uint32_t cleared : {row.code, static_cast<uint16_t>(row.code + 1)}) {
            grBufferClear(0, 0, static_cast<uint16_t>(cleared));
            DrawQuad(10, 10, 20, 20, row.w);
            EXPECT_EQ(Swap().Count(), cleared == row.code ? 0 : 100) << row.w;
        }
    }
    grBufferClear(0, 0, 0xFFFF);
    DrawQuad(10, 10, 20, 20, 70000);
    EXPECT_EQ(SwapAndClear().Count(), 0) << "out of the buffer's range";
}

TEST_P(Drawing, TheNearerPixelStaysAndDepthIsClearedOnlyWhileItIsWritten) {
    const GrMipMapId_t white = MakePlain(WHITE);
    const GrMipMapId_t red = MakePlain(0x7C00);
    const auto drawn = [](GrMipMapId_t texture, float w) {
        guTexSource(texture);
        DrawQuad(10, 10, 20, 20, w);
        return Swap().At(15, 15);
    };
    EXPECT_EQ(drawn(red, 100), 0xFF0000U);
    grDepthMask(FXFALSE);
    grBufferClear(0x00102030, 0, 0xFFFF);
    EXPECT_EQ(drawn(white, 100), 0x102030U) << "of equal ones the first stays";
    EXPECT_EQ(drawn(white, 50), 0xFFFFFFU);
    grDepthMask(FXTRUE);
    EXPECT_EQ(drawn(red, 60), 0xFF0000U) << "the nearer one has left no depth";
    grBufferClear(0, 0, 0xFFFF);
    EXPECT_EQ(drawn(white, 200), 0xFFFFFFU);
}

TEST_P(Drawing, PixelsWithoutTheReferenceAlphaAreHoles) {
    MakePlain(0xFFFF, GR_TEXFMT_RGB_565);
    DrawQuad(10, 10, 20, 20);
    EXPECT_EQ(SwapAndClear().Count(), 0) << "no alpha is full alpha";
    MakePlain(HOLE);
    DrawQuad(10, 10, 20, 20, 50);
    MakePlain(WHITE);
    DrawQuad(10, 10, 20, 20, 60);
    EXPECT_EQ(SwapAndClear().Count(), 100) << "a hole leaves no depth";
    MakeTexture(GR_TEXFMT_ARGB_1555, GR_LOD_8, GR_LOD_8, GR_ASPECT_1x1,
                [](uint32_t, uint32_t x, uint32_t) { return x >= 2 && x < 6 ? WHITE : HOLE; });
    DrawQuad(0, 0, 256, 1);
    EXPECT_NEAR(SwapAndClear().Count(), 97, 2) << "holes grow by half a texel, less what rounds to nothing";
    MakePlain(HOLE);
    grAlphaTestFunction(GR_CMP_ALWAYS);
    DrawQuad(10, 10, 20, 20);
    EXPECT_EQ(Swap().Count(), 100);
}

TEST_P(Drawing, TheVertexScalesTheTexelAndAddsItsAlpha) {
    MakePlain(0x3E10);  // red 0x7B, green 0x84, blue 0x84
    const auto drawn = [](float r, float g, float b, float a) {
        std::vector<GrVertex> corners = {Vertex(10, 10), Vertex(10, 20), Vertex(20, 20)};
        for (GrVertex& corner : corners) {
            corner.r = r;
            corner.g = g;
            corner.b = b;
            corner.a = a;
        }
        DrawFan(corners);
        return SwapAndClear().At(11, 18);
    };
    EXPECT_EQ(drawn(255, 255, 255, 0), 0x7B8484U);
    EXPECT_EQ(drawn(128, 0, 64, 0), 0x3D0021U);
    EXPECT_EQ(drawn(255, 255, 255, 252), 0xFFFFFFU);
    EXPECT_EQ(drawn(255, 0, 255, 16), 0x8B1094U);
    EXPECT_EQ(drawn(1000, -5, 255, -9), 0x7B0084U);
    grColorCombine(GR_COMBINE_FUNCTION_SCALE_OTHER, GR_COMBINE_FACTOR_LOCAL, GR_COMBINE_LOCAL_ITERATED,
                   GR_COMBINE_OTHER_TEXTURE, FXFALSE);
    EXPECT_EQ(drawn(255, 255, 255, 252), 0x7B8484U) << "this one takes no alpha";
}

TEST_P(Drawing, TexelsLieInPerspectiveColoursDoNot) {
    MakeTexture(GR_TEXFMT_ARGB_4444, GR_LOD_256, GR_LOD_256, GR_ASPECT_1x1,
                [](uint32_t, uint32_t x, uint32_t) { return static_cast<uint16_t>(x / 16 << 8); });
    GrVertex left[] = {Vertex(0, 0, 100, 0, 0), Vertex(0, 100, 100, 0, 0)};
    GrVertex right[] = {Vertex(256, 100, 300, 256, 0), Vertex(256, 0, 300, 256, 0)};
    for (GrVertex& corner : left)
        corner.g = corner.r = 255;
    for (GrVertex& corner : right)
        corner.a = 128;
    DrawFan({left[0], left[1], right[0], right[1]});
    const uint32_t middle = Swap().At(128, 50);
    // Half way on the screen lies a quarter of the way in the world: column 64, one texel nearer because of the centre.
    EXPECT_NEAR(static_cast<int>(middle >> 16), 4 * 17 + 64, 18);
    EXPECT_NEAR(static_cast<int>(middle & 0xFF), 64, 1);
}

TEST_P(Drawing, TexturesRepeatOrEndWithTheirEdge) {
    const auto leftHalf = [](uint32_t, uint32_t x, uint32_t) { return x < 8 ? WHITE : uint16_t{0x001F}; };
    const GrMipMapId_t handle = MakeTexture(GR_TEXFMT_ARGB_1555, GR_LOD_16, GR_LOD_16, GR_ASPECT_2x1, leftHalf);
    const auto row = [](GrTextureClampMode_t mode) {
        grTexClampMode(GR_TMU0, mode, mode);
        DrawFan({Vertex(0, 0, 100, -256, -128), Vertex(0, 96, 100, -256, 256), Vertex(192, 96, 100, 512, 256),
                 Vertex(192, 0, 100, 512, -128)});
        const Shown shown = SwapAndClear();
        return std::vector<uint32_t>{shown.At(10, 5), shown.At(40, 20), shown.At(80, 48), shown.At(180, 90)};
    };
    EXPECT_EQ(row(GR_TEXTURECLAMP_CLAMP), (std::vector<uint32_t>{0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0x0000FF}));
    EXPECT_EQ(row(GR_TEXTURECLAMP_WRAP), (std::vector<uint32_t>{0xFFFFFF, 0x0000FF, 0xFFFFFF, 0x0000FF}));
    guTexSource(handle);
    DrawQuad(0, 0, 64, 64, 100, 512, 128);
    EXPECT_EQ(Swap().At(40, 30), 0x0000FFU) << "a texture brings its own modes";
    EXPECT_EQ(FrontPicture()->pixels[40], FrontPicture()->pixels[30 * 640 + 40]);
}

TEST_P(Drawing, TheLevelNearestToOneTexelAPixelIsTaken) {
    // Level n of 256 >> n texels is of green 16 n.
    const auto level = [](uint32_t lod, uint32_t, uint32_t) { return static_cast<uint16_t>(lod << 4); };
    const auto lodOf = [](float pixels) {
        DrawQuad(0, 0, pixels, pixels);
        return SwapAndClear().At(3, 2) / 0x1100;
    };
    MakeTexture(GR_TEXFMT_ARGB_4444, GR_LOD_128, GR_LOD_4, GR_ASPECT_1x1, level);
    const struct {
        float pixels;
        uint32_t lod;
    } rows[] = {{400, 1}, {92, 1}, {90, 2}, {46, 2}, {45, 3}, {5, 6}};
    for (const auto& row : rows)
        EXPECT_EQ(lodOf(row.pixels), row.lod) << row.pixels;
    MakeTexture(GR_TEXFMT_ARGB_4444, GR_LOD_128, GR_LOD_1, GR_ASPECT_1x8, level);
    EXPECT_EQ(lodOf(8), 5U) << "the longer side counts";
}

TEST_P(Drawing, FogMixesInItsColourByDepth) {
    GrFog_t table[GR_FOG_TABLE_SIZE];
    guFogGenerateLinear(table, 21739.13F, 99956.52F);
    grFogTable(table);
    grFogColorValue(0x00FF0000);
    grFogMode(GR_FOG_WITH_TABLE);
    MakePlain(0x001F);
    const struct {
        float w;
        double share;
    } rows[] = {{100, 0}, {21000, 0}, {30000, 27.2}, {40000, 59.9}, {60000, 100}};
    for (const auto& row : rows) {
        DrawQuad(10, 10, 20, 20, row.w);
        const uint32_t pixel = SwapAndClear().At(15, 15);
        EXPECT_NEAR(pixel >> 16, row.share, 1) << row.w;
        EXPECT_NEAR(pixel & 0xFF, 255 - row.share, 1) << row.w;
    }
    for (int i = 0; i < GR_FOG_TABLE_SIZE; ++i)
        table[i] = i % 2 ? 255 : 0;
    grFogTable(table);
    const auto fogOf = [](int depth) {  // a code of the octave from 1024 on
        DrawQuad(10, 10, 20, 20, 8388608.0F / (49152.5F - static_cast<float>(depth)));
        return SwapAndClear().At(15, 15) >> 16;
    };
    for (int depth = 41984; depth < 42084; depth += 4)
        EXPECT_EQ(fogOf(depth), fogOf(depth + 3)) << "the two lowest bits of " << depth;
    grFogMode(GR_FOG_DISABLE);
    DrawQuad(10, 10, 20, 20, 60000);
    EXPECT_EQ(Swap().At(15, 15), 0x0000FFU);
}

TEST_P(Drawing, LinesHoldBothEndsAndNothingHidesThem) {
    MakePlain(WHITE);
    DrawQuad(0, 0, 100, 100, 1.5F);
    const auto line = [](float x1, float y1, float x2, float y2) {
        GrVertex ends[2] = {Vertex(x1, y1), Vertex(x2, y2)};
        for (GrVertex& end : ends) {
            end.g = end.b = 0;
            end.r = 126;
            end.oow = end.a = end.tmuvtx[0].sow = NAN;
        }
        grDrawLine(&ends[0], &ends[1]);
    };
    line(10, 20, 30, 25);
    line(50, 50, 50, 50);
    line(-10, 90, 5, 90);
    const Shown shown = Swap();
    EXPECT_EQ(std::count(shown.picture->pixels, shown.picture->pixels + 640 * 480, 0x7E0000U), 21 + 1 + 6);
    for (const auto& [x, y] : {std::pair{10, 20}, {30, 25}, {50, 50}, {5, 90}})
        EXPECT_EQ(shown.At(x, y), 0x7E0000U) << x;
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
                const float range = random() % 4 ? 300.0F : 70000.0F;
                corners.push_back(Vertex(x + number(-spread, spread), y + number(-spread, spread), number(0.5F, range),
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
    DrawQuad(10.5F, 20.5F, 14.5F, 24.5F);
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
