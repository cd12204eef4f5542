#include "render/raster.h"

#include "render/raster_model.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

namespace {

struct ScreenCorner {
    int32_t x, y;  // 16.16
    float inverseDepth, u, v, intensity;
};

const PolyRecord* MakePolygon(const std::vector<ScreenCorner>& corners, uint8_t texture) {
    MakeWorld(1);
    std::vector<Corner> plain;
    for (const ScreenCorner& corner : corners)
        plain.push_back({0, 0, 1, corner.u, corner.v, corner.intensity});
    const PolyRecord* polygon = WorldGeometry.polygons + AddPolygon(plain, texture);
    for (size_t i = 0; i < corners.size(); i++) {
        ViewPoint& point = WorldGeometry.viewPoints[i];
        point.screen.fixed = {corners[i].x, corners[i].y};
        point.inverseDepth = corners[i].inverseDepth;
    }
    return polygon;
}

int32_t Pixels(double value) {
    return static_cast<int32_t>(std::lround(value * 65536));
}

class Raster : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam() && !HasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        UseAvx2Spans = GetParam();
        MakeFrame(200, 60, 216);
        BuildReciprocalTable();
        LoadTextures(MakeTextureFile({{0, 0, 0, 128, 128},
                                      {1, 64, 128, 64, 32},
                                      {0, 255, 255, 1, 1},
                                      {1, 224, 0, 32, 128},
                                      {0, 192, 192, 64, 64},
                                      {1, 4, 3, 2, 4},
                                      {1, 0, 200, 0, 16}},
                                     2));
        for (size_t i = 0; i < sizeof ShadeTable; i++)
            ShadeTable[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
    }
    void TearDown() override { UseAvx2Spans = HasAvx2(); }

    void ExpectLikeModel(const std::vector<ScreenCorner>& corners, uint8_t texture, bool skipsTexelZero) {
        const PolyRecord* polygon = MakePolygon(corners, texture);
        FillFrame(0x77);
        std::vector<uint8_t> expected = FramePixels();
        ModelRaster(*polygon, skipsTexelZero, expected);
        skipsTexelZero ? RasterPolygonTransparent(polygon) : RasterPolygon(polygon);
        ASSERT_EQ(FramePixels(), expected);
        ASSERT_TRUE(GuardsAreIntact());
    }

    std::mt19937 random{12345};
    double Uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    float Float(double low, double high) { return static_cast<float>(Uniform(low, high)); }
    uint8_t Texture() { return static_cast<uint8_t>(random() % 6); }

    // One of the values that arithmetic stumbles over.
    float Extreme() {
        using Limits = std::numeric_limits<float>;
        const std::array values = {0.0f,
                                   -0.0f,
                                   Limits::infinity(),
                                   -Limits::infinity(),
                                   Limits::quiet_NaN(),
                                   1e-42f,
                                   Limits::max(),
                                   -1.0f,
                                   2147483520.0f,
                                   -2147483648.0f,
                                   1e-6f,
                                   8388607.5f};
        return values[random() % values.size()];
    }

    // Corners around a centre, counter-clockwise on the screen.
    std::vector<ScreenCorner> Round(double x, double y, double radius, int count) {
        std::vector<ScreenCorner> corners;
        const double turn = Uniform(0, 6.28);
        for (int i = 0; i < count; i++) {
            const double angle = turn - 6.2831853 * i / count;
            corners.push_back({Pixels(x + radius * std::cos(angle)), Pixels(y + radius * std::sin(angle)),
                               1 / Float(1, 900), Float(-300, 40000), Float(-300, 40000), Float(0, 32512)});
        }
        return corners;
    }
};

INSTANTIATE_TEST_SUITE_P(Spans, Raster, testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Avx2" : "Portable"; });

TEST_P(Raster, DrawsPolygonsOfEverySizeAsTheModelDoes) {
    for (int i = 0; i < 250 && !HasFatalFailure(); i++) {
        const double radius = std::exp(Uniform(0, 6));
        ExpectLikeModel(Round(Uniform(-20, 220), Uniform(-20, 80), radius, 3 + i % 14), Texture(), i % 2 == 0);
    }
}

TEST_P(Raster, SurvivesAnyInputAsTheModelDoes) {
    for (int i = 0; i < 250 && !HasFatalFailure(); i++) {
        std::vector<ScreenCorner> corners(random() % 17);
        const double spread = i % 3 == 0 ? 32767 : 400;
        for (ScreenCorner& corner : corners) {
            corner = {Pixels(Uniform(-spread, spread)),
                      Pixels(Uniform(-spread, spread)),
                      Float(-1, 1),
                      Float(-1e6, 1e6),
                      Float(-1e9, 1e9),
                      Float(-1e5, 1e5)};
            if (random() % 8 == 0) corner.inverseDepth = Extreme();
            if (random() % 8 == 0) corner.u = corner.intensity = Extreme();
            if (random() % 16 == 0) corner.x = std::numeric_limits<int32_t>::min();
            if (random() % 16 == 0) corner.y = std::numeric_limits<int32_t>::max();
        }
        ExpectLikeModel(corners, Texture(), i % 2 == 0);
    }
}

// At constant depth the texture steps in whole texels, so every pixel is known without arithmetic.
TEST_P(Raster, StepsWholeTexelsThroughShortAndLongSpans) {
    std::iota(ShadeTable, ShadeTable + sizeof ShadeTable, uint8_t{0});
    for (int n : {1, 2, 7, 8, 9, 15, 16, 17, 31, 32, 33, 48, 100}) {
        const double right = 5 + n;
        const float u = static_cast<float>(n) * 256;
        const PolyRecord* polygon = MakePolygon({{Pixels(5), Pixels(9), 1, 0, 3 * 256, 0},
                                                 {Pixels(5), Pixels(11), 1, 0, 3 * 256, 0},
                                                 {Pixels(right), Pixels(11), 1, u, 3 * 256, 0},
                                                 {Pixels(right), Pixels(9), 1, u, 3 * 256, 0}},
                                                0);
        FillFrame(0);
        RasterPolygon(polygon);
        std::vector<uint8_t> expected(200 * 60);
        for (int y : {9, 10})
            std::copy_n(TextureImage + TextureRecords()[0].texelOffset + 3 * 256, n, expected.begin() + y * 200 + 5);
        EXPECT_EQ(FramePixels(), expected) << n << " pixels";
    }
}

// A frame that ends at a page which must not be touched, and polygons that end in its last pixels.
TEST_P(Raster, TouchesNothingBehindTheLastPixel) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void* const pages = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(mprotect(static_cast<uint8_t*>(pages) + page, page, PROT_NONE), 0);
    ScreenWidth = FramePitch = 40;
    ScreenHeight = 8;
    FrameBuffer = static_cast<uint8_t*>(pages) + page - 40 * 8;
    for (int width = 1; width <= 40; width++) {
        const double left = 40 - width;
        const PolyRecord* polygon = MakePolygon({{Pixels(left), 0, 1, 0, 0, 0},
                                                 {Pixels(left), Pixels(8), 1, 0, 0, 0},
                                                 {Pixels(40), Pixels(8), 1, 5000, 0, 0},
                                                 {Pixels(40), 0, 1, 5000, 0, 0}},
                                                0);
        std::vector<uint8_t> expected = FramePixels();
        ModelRaster(*polygon, width % 2 == 0, expected);
        width % 2 == 0 ? RasterPolygonTransparent(polygon) : RasterPolygon(polygon);
        EXPECT_EQ(FramePixels(), expected) << width;
    }
    munmap(pages, 2 * page);
}

TEST_P(Raster, CoversEachPixelOfAMeshOnce) {
    std::fill_n(ShadeTable, sizeof ShadeTable, uint8_t{1});
    constexpr int COLUMNS = 9, ROWS = 5;
    ScreenCorner grid[ROWS + 1][COLUMNS + 1];
    for (int row = 0; row <= ROWS; row++) {
        for (int column = 0; column <= COLUMNS; column++) {
            const bool isInside = row > 0 && row < ROWS && column > 0 && column < COLUMNS;
            const double jitter = isInside ? 0.45 : 0;
            grid[row][column] = {Pixels(10 + 20 * (column + Uniform(-jitter, jitter))),
                                 Pixels(5 + 10 * (row + Uniform(-jitter, jitter))),
                                 1 / Float(1, 9),
                                 0,
                                 0,
                                 0};
        }
    }
    std::vector<int> hits(200 * 60);
    const auto draw = [&](const ScreenCorner& a, const ScreenCorner& b, const ScreenCorner& c) {
        FillFrame(0);
        RasterPolygon(MakePolygon({a, b, c}, 0));
        const std::vector<uint8_t> pixels = FramePixels();
        std::transform(hits.begin(), hits.end(), pixels.begin(), hits.begin(), std::plus());
    };
    for (int row = 0; row < ROWS; row++) {
        for (int column = 0; column < COLUMNS; column++) {
            draw(grid[row][column], grid[row + 1][column], grid[row][column + 1]);
            draw(grid[row + 1][column], grid[row + 1][column + 1], grid[row][column + 1]);
        }
    }
    for (int y = 0; y < 60; y++) {
        for (int x = 0; x < 200; x++)
            ASSERT_EQ(hits[static_cast<size_t>(y * 200 + x)], x >= 10 && x < 190 && y >= 5 && y < 55) << x << ' ' << y;
    }
}

TEST_P(Raster, LeavesTheFrameAloneWhereNothingIsToBeDrawn) {
    std::vector<ScreenCorner> polygon = Round(100, 30, 25, 5);
    const std::vector<ScreenCorner> facing = polygon;
    std::reverse(polygon.begin(), polygon.end());
    RasterPolygon(MakePolygon(polygon, 0));                           // a back face
    RasterPolygon(MakePolygon(facing, 6));                            // a texture without texels
    RasterPolygon(MakePolygon(facing, 200));                          // no such texture
    RasterPolygon(MakePolygon({{Pixels(9), Pixels(5.2), 1, 0, 0, 0},  // between two rows
                               {Pixels(40), Pixels(5.9), 1, 0, 0, 0},
                               {Pixels(70), Pixels(5.3), 1, 0, 0, 0}},
                              0));
    EXPECT_EQ(FramePixels(), std::vector<uint8_t>(200 * 60, 0));
}

}  // namespace
