#include "render/raster.h"

#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sys/mman.h>
#include <unistd.h>

namespace {

struct ScreenCorner {
    int32_t x, y;  // 16.16
    float inverseDepth, u, v, intensity;
};
using ScreenCorners = std::vector<ScreenCorner>;

const PolyRecord* MakePolygon(const ScreenCorners& corners, uint8_t texture) {
    WorldGeometry.used = {};
    std::vector<ViewCorner> plain;
    for (const ScreenCorner& corner : corners)
        plain.push_back({0, 0, 1, corner.u, corner.v, corner.intensity});
    const PolyRecord* polygon = WorldGeometry.polygons + AppendPolygon(plain, texture);
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

class Raster : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld();
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
    void TearDown() override {
        EXPECT_TRUE(GuardsAreIntact());
        UseAvx2Spans = HasAvx2();
    }

    static std::vector<uint8_t> Draw(const PolyRecord* polygon, bool skipsTexelZero) {
        FillFrame(0x77);
        skipsTexelZero ? RasterPolygonTransparent(polygon) : RasterPolygon(polygon);
        return FramePixels();
    }

    // The pixels, which must not depend on the processor.
    static std::vector<uint8_t> DrawBothWays(const ScreenCorners& corners, uint8_t texture, bool skipsTexelZero) {
        const PolyRecord* polygon = MakePolygon(corners, texture);
        UseAvx2Spans = false;
        std::vector<uint8_t> pixels = Draw(polygon, skipsTexelZero);
        UseAvx2Spans = HasAvx2();
        EXPECT_EQ(Draw(polygon, skipsTexelZero), pixels);
        return pixels;
    }

    std::mt19937 random{12345};
    double Uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    float Float(double low, double high) { return static_cast<float>(Uniform(low, high)); }
    uint8_t Texture() { return static_cast<uint8_t>(random() % 6); }

    // One of the values that arithmetic stumbles over.
    float Extreme() {
        using Limits = std::numeric_limits<float>;
        const float values[] = {0.0f,  -0.0f,         Limits::infinity(), -Limits::infinity(), NAN,   Limits::max(),
                                -1.0f, 2147483520.0f, -2147483648.0f,     8388607.5f,          1e-6f, 1e-42f};
        return values[random() % std::size(values)];
    }

    // Corners around a centre, counter-clockwise on the screen.
    ScreenCorners Round(double x, double y, double radius, int count) {
        ScreenCorners corners;
        const double turn = Uniform(0, 6.28);
        for (int i = 0; i < count; i++) {
            const double angle = turn - 6.2831853 * i / count;
            corners.push_back({Pixels(x + radius * std::cos(angle)), Pixels(y + radius * std::sin(angle)),
                               1 / Float(1, 900), Float(-300, 40000), Float(-300, 40000), Float(0, 32512)});
        }
        return corners;
    }
};

TEST_F(Raster, DrawsPolygonsOfEverySizeAlikeOnEveryProcessor) {
    for (int i = 0; i < 250 && !HasFailure(); i++) {
        const double radius = std::exp(Uniform(0, 6));
        DrawBothWays(Round(Uniform(-20, 220), Uniform(-20, 80), radius, 3 + i % 14), Texture(), i % 2 == 0);
    }
}

TEST_F(Raster, SurvivesAnyInputAlikeOnEveryProcessor) {
    for (int i = 0; i < 250 && !HasFailure(); i++) {
        ScreenCorners corners(random() % 17);
        const double spread = i % 3 == 0 ? 32767 : 400;
        for (ScreenCorner& corner : corners) {
            const int32_t x = Pixels(Uniform(-spread, spread)), y = Pixels(Uniform(-spread, spread));
            corner = {x, y, Float(-1, 1), Float(-1e6, 1e6), Float(-1e9, 1e9), Float(-1e5, 1e5)};
            if (random() % 8 == 0) corner.inverseDepth = Extreme();
            if (random() % 8 == 0) corner.u = corner.intensity = Extreme();
            if (random() % 16 == 0) corner.x = std::numeric_limits<int32_t>::min();
            if (random() % 16 == 0) corner.y = std::numeric_limits<int32_t>::max();
        }
        DrawBothWays(corners, Texture(), i % 2 == 0);
    }
}

// Sparse enough to leave gaps at first, then more than are kept at once.
TEST_F(Raster, DrawsTheSamePictureFrontToBack) {
    for (const int count : {12, 60, 5000}) {
        const std::mt19937 before = random;
        const auto draw = [&](bool frontToBack) {
            random = before;
            FillFrame(0x77);
            if (frontToBack) BeginBackToFront();
            for (int i = 0; i < count; i++) {
                const ScreenCorners corners = Round(Uniform(-20, 220), Uniform(-20, 80), std::exp(Uniform(0, 5)), 5);
                const PolyRecord* polygon = MakePolygon(corners, Texture());
                i % 2 == 0 ? RasterPolygonTransparent(polygon) : RasterPolygon(polygon);
            }
            EndBackToFront();
            return FramePixels();
        };
        const std::vector<uint8_t> expected = draw(false);
        for (const bool usesAvx2 : {false, HasAvx2()}) {
            UseAvx2Spans = usesAvx2;
            EXPECT_EQ(draw(true), expected) << count << " polygons";
        }
    }
}

// A frame that ends at a page which must not be touched, and polygons that end in its last pixels.
TEST_F(Raster, TouchesNothingBehindTheLastPixel) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void* const pages = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(mprotect(static_cast<uint8_t*>(pages) + page, page, PROT_NONE), 0);
    MakeFrame(40, 8, 40);
    uint8_t* const ownFrame = FrameBuffer;
    FrameBuffer = static_cast<uint8_t*>(pages) + page - 40 * 8;
    for (int width = 1; width <= 40; width++) {
        const int32_t left = Pixels(40 - width), right = Pixels(40), bottom = Pixels(8);
        DrawBothWays({{left, 0, 1, 0, 0, 0},
                      {left, bottom, 1, 0, 0, 0},
                      {right, bottom, 1, 5000, 0, 0},
                      {right, 0, 1, 5000, 0, 0}},
                     0, width % 2 == 0);
    }
    FrameBuffer = ownFrame;
    munmap(pages, 2 * page);
}

TEST_F(Raster, DrawsWhatLeavesTheFrameAsInALargerOne) {
    for (int i = 0; i < 50 && !HasFailure(); i++) {
        const ScreenCorners corners = Round(Uniform(100, 220), Uniform(30, 80), std::exp(Uniform(2, 5)), 3 + i % 9);
        MakeFrame(200, 60, 216);
        const std::vector<uint8_t> cut = DrawBothWays(corners, 0, false);
        MakeFrame(400, 200, 400);
        const std::vector<uint8_t> whole = DrawBothWays(corners, 0, false);
        for (size_t y = 0; y < 60; y++)
            ASSERT_TRUE(std::equal(&cut[y * 200], &cut[y * 200] + 200, &whole[y * 400])) << "row " << y;
    }
}

TEST_F(Raster, CoversEachPixelOfAMeshOnce) {
    std::fill_n(ShadeTable, sizeof ShadeTable, uint8_t{1});
    constexpr int COLUMNS = 9, ROWS = 5;
    ScreenCorner grid[ROWS + 1][COLUMNS + 1];
    for (int row = 0; row <= ROWS; row++) {
        for (int column = 0; column <= COLUMNS; column++) {
            const double jitter = row > 0 && row < ROWS && column > 0 && column < COLUMNS ? 0.45 : 0;
            const double x = 10 + 20 * (column + Uniform(-jitter, jitter));
            grid[row][column] = {Pixels(x), Pixels(5 + 10 * (row + Uniform(-jitter, jitter))), 1 / Float(1, 9), 0, 0,
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
    for (int i = 0; i < 200 * 60; i++) {
        const int x = i % 200, y = i / 200;
        ASSERT_EQ(hits[static_cast<size_t>(i)], x >= 10 && x < 190 && y >= 5 && y < 55) << x << ' ' << y;
    }
}

TEST_F(Raster, LeavesTheFrameAloneWhereNothingIsToBeDrawn) {
    const ScreenCorners facing = Round(100, 30, 25, 5);
    RasterPolygon(MakePolygon({facing.rbegin(), facing.rend()}, 0));  // a back face
    RasterPolygon(MakePolygon(facing, 6));                            // a texture without texels
    RasterPolygon(MakePolygon(facing, 200));                          // no such texture
    EXPECT_EQ(FramePixels(), std::vector<uint8_t>(200 * 60, 0));
}

}  // namespace
