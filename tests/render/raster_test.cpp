#include "render/raster.h"

#include "render/raster_spans.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "support/plain_fill.h"

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
    for (size_t i = 0; i < corners.size(); ++i) {
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
        for (size_t i = 0; i < sizeof ShadeTable; ++i)
            ShadeTable[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
    }
    void TearDown() override {
        EXPECT_TRUE(GuardsAreIntact());
        UseAvx2Spans = HasAvx2();
    }

    struct Polygon {
        ScreenCorners corners;
        uint8_t texture;
        bool skipsTexelZero;
    };
    using Fill = void (*)(const PolyRecord&, bool skipsTexelZero);

    static std::vector<uint8_t> Draw(const std::vector<Polygon>& polygons, Fill fill) {
        FillFrame(0x77);
        for (const Polygon& polygon : polygons)
            fill(*MakePolygon(polygon.corners, polygon.texture), polygon.skipsTexelZero);
        EndNearestFirst();
        return FramePixels();
    }

    // Compares the frames pixel for pixel, with every kind of fill and in both orders.
    static void ExpectAsDrawnPlainly(const std::vector<Polygon>& polygons) {
        const Fill fill = [](const PolyRecord& polygon, bool skipsTexelZero) {
            skipsTexelZero ? RasterPolygonTransparent(&polygon) : RasterPolygon(&polygon);
        };
        const std::vector<uint8_t> expected = Draw(polygons, FillPlainly);
        for (const bool usesAvx2 : {false, HasAvx2()}) {
            UseAvx2Spans = usesAvx2;
            for (const bool isNearestFirst : {false, true}) {
                if (isNearestFirst) BeginNearestFirst();
                const std::vector<uint8_t> pixels =
                    Draw(isNearestFirst ? std::vector(polygons.rbegin(), polygons.rend()) : polygons, fill);
                const auto differing = std::mismatch(pixels.begin(), pixels.end(), expected.begin()).first;
                EXPECT_TRUE(differing == pixels.end())
                    << (usesAvx2 ? "AVX2" : "portable") << (isNearestFirst ? ", nearest first" : "") << ": "
                    << polygons.size() << " polygons differ from pixel " << differing - pixels.begin() << " on";
            }
        }
    }

    std::mt19937 random{12345};
    double Uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    float Float(double low, double high) { return static_cast<float>(Uniform(low, high)); }
    uint8_t Texture() { return static_cast<uint8_t>(random() % 6); }

    // A random choice of the values at which arithmetic goes wrong most easily.
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
        for (int i = 0; i < count; ++i) {
            const double angle = turn - 6.2831853 * i / count;
            corners.push_back({Pixels(x + radius * std::cos(angle)), Pixels(y + radius * std::sin(angle)),
                               1 / Float(1, 900), Float(-300, 40000), Float(-300, 40000), Float(0, 32512)});
        }
        return corners;
    }
};

TEST_F(Raster, DrawsPolygonsOfEverySizePixelByPixel) {
    for (int i = 0; i < 250 && !HasFailure(); ++i) {
        const double radius = std::exp(Uniform(0, 6));
        ExpectAsDrawnPlainly({{Round(Uniform(-20, 220), Uniform(-20, 80), radius, 3 + i % 14), Texture(), i % 2 == 0}});
    }
}

TEST_F(Raster, DrawsAnyInputPixelByPixel) {
    for (int i = 0; i < 250 && !HasFailure(); ++i) {
        ScreenCorners corners(random() % 17);
        const double spread = i % 25 == 0 ? 32767 : 400;
        for (ScreenCorner& corner : corners) {
            const int32_t x = Pixels(Uniform(-spread, spread)), y = Pixels(Uniform(-spread, spread));
            corner = {x, y, Float(-1, 1), Float(-1e6, 1e6), Float(-1e9, 1e9), Float(-1e5, 1e5)};
            if (random() % 8 == 0) corner.inverseDepth = Extreme();
            if (random() % 8 == 0) corner.u = corner.intensity = Extreme();
            if (random() % 16 == 0) corner.x = std::numeric_limits<int32_t>::min();
            if (random() % 64 == 0) corner.y = std::numeric_limits<int32_t>::max();
        }
        ExpectAsDrawnPlainly({{corners, Texture(), i % 2 == 0}});
    }
}

// The steps of an edge that begins far above the frame round it across a column that none of its ends reaches.
TEST_F(Raster, DrawsSliversThatRoundingWidens) {
    for (int i = 0; i < 50 && !HasFailure(); ++i) {
        const int32_t column = Pixels(1 + i), rise = static_cast<int32_t>(Uniform(0.55, 0.95) * 3060);
        const int32_t top = Pixels(-3000), bottom = Pixels(60);
        ExpectAsDrawnPlainly({{{{column - rise - 9, top, 1, 0, 0, 0},
                                {column - rise - 9, bottom, 1, 0, 0, 0},
                                {column, bottom, 1, 5000, 0, 0},
                                {column - rise, top, 1, 5000, 0, 0}},
                               0,
                               false}});
    }
}

// The first frames are sparse enough to leave gaps; the last cover each pixel many times.
TEST_F(Raster, DrawsManyPolygonsPixelByPixel) {
    for (const int count : {12, 60, 5000}) {
        std::vector<Polygon> polygons;
        for (int i = 0; i < count; ++i)
            polygons.push_back(
                {Round(Uniform(-20, 220), Uniform(-20, 80), std::exp(Uniform(0, 5)), 5), Texture(), i % 2 == 0});
        ExpectAsDrawnPlainly(polygons);
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
    for (int width = 1; width <= 40; ++width) {
        const int32_t left = Pixels(40 - width), right = Pixels(40), bottom = Pixels(8);
        ExpectAsDrawnPlainly({{{{left, 0, 1, 0, 0, 0},
                                {left, bottom, 1, 0, 0, 0},
                                {right, bottom, 1, 5000, 0, 0},
                                {right, 0, 1, 5000, 0, 0}},
                               0,
                               width % 2 == 0}});
    }
    FrameBuffer = ownFrame;
    munmap(pages, 2 * page);
}

TEST_F(Raster, LeavesTheFrameAloneWhereNothingIsToBeDrawn) {
    const ScreenCorners facing = Round(100, 30, 25, 5);
    RasterPolygon(MakePolygon(facing, 6));    // a texture without texels
    RasterPolygon(MakePolygon(facing, 200));  // no such texture
    EXPECT_EQ(FramePixels(), std::vector<uint8_t>(200 * 60, 0));
}

}  // namespace
