#include "render/screen.h"

#include "camera/camera_tables.h"
#include "render/lines.h"
#include "render/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

class Lines : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld();
        MakeFrame(320, 240, 336);
        LineColour = 0x105;
    }
    void TearDown() override { EXPECT_TRUE(GuardsAreIntact()); }

    // Pixels of the lines since the last call.
    static long Drawn() {
        const std::vector<uint8_t> pixels = FramePixels();
        FillFrame(0);
        return std::count(pixels.begin(), pixels.end(), 5);
    }
};

TEST_F(Lines, EveryColumnOrRowOfTheLongerSideGetsOnePixel) {
    const struct {
        int32_t x1, y1, x2, y2;
        long pixels;
    } cases[] = {{10, 20, 40, 20, 31}, {10, 20, 10, 50, 31}, {40, 50, 10, 20, 31},  {10, 20, 40, 50, 31},
                 {5, 60, 9, 20, 41},   {7, 7, 7, 7, 0},      {-20, 30, 10, 30, 11}, {300, 230, 400, 330, 10}};
    for (const auto& c : cases) {
        DrawLine2D(c.x1, c.y1, c.x2, c.y2);
        if (c.pixels > 30) {
            EXPECT_EQ(FrameBuffer[c.y1 * FramePitch + c.x1], 5);
            EXPECT_EQ(FrameBuffer[c.y2 * FramePitch + c.x2], 5);
        }
        EXPECT_EQ(Drawn(), c.pixels) << c.x1 << ' ' << c.y1 << ' ' << c.x2 << ' ' << c.y2;
    }
}

TEST_F(Lines, FarAwayEndsNeitherWriteOutsideNorTakeLong) {
    const int32_t ends[] = {std::numeric_limits<int32_t>::min(), -1, 0, 319, 320, std::numeric_limits<int32_t>::max()};
    for (int32_t x1 : ends)
        for (int32_t y1 : ends)
            for (int32_t x2 : ends)
                DrawLine2D(x1, y1, x2, 77);
    EXPECT_GT(Drawn(), 0);
}

TEST_F(Lines, SegmentsAreCutAtTheSidesOfTheView) {
    DrawLine3D(200, 0, 100, 300, 0, 100);  // right of it
    DrawLine3D(5, 5, 5, 5, 5, 5);          // a single point
    EXPECT_EQ(Drawn(), 0);
    DrawLine3D(0, 0, 100, 500, 0, 100);
    EXPECT_EQ(Drawn(), 318 - 160 + 1);
    DrawLine3D(0, 10, -50, 0, 10, 150);  // through the eye plane
    EXPECT_GT(Drawn(), 90);
}

}  // namespace
