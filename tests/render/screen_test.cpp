#include "render/screen.h"

#include "camera/camera_tables.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/fog.h"
#include "render/lines.h"
#include "render/scene.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

TEST(Screen, SoftwareDisplayOpensAndTheProjectionFollowsItsSize) {
    Recorded = {};
    DisplayState = DISPLAY_NONE;
    ASSERT_TRUE(InitGraphics(0));
    EXPECT_EQ(ScreenWidth, 320);
    EXPECT_EQ(ScreenHeight, 240);
    ScreenResIndex = 2;
    testing::internal::CaptureStdout();
    SetupScreen();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ScreenRes    = 2\nScreenWidth  = 320\nScreenHeight = 240\nGenerating Node Radii\n"
              "Setting Texture Palette\nSwapping Screen\n");
    EXPECT_EQ(FramePitch, 640);
    EXPECT_FLOAT_EQ(ProjectionScaleX, 316.8f);
    EXPECT_FLOAT_EQ(ProjectionScaleY, 237.6f);
    EXPECT_EQ(ScreenCentreX, 320);
    EXPECT_EQ(ScreenCentreY, 240);
    EXPECT_NEAR(ScreenAspect, 4.0 / 3, 1e-6);
    Recorded.order.erase(std::remove(Recorded.order.begin(), Recorded.order.end(), 'P'), Recorded.order.end());
    EXPECT_EQ(Recorded.order, "WRW");
}

TEST(Screen, ClearingFillsTheLowerHalfInsideThePitch) {
    for (int32_t pitch : {320, 336}) {
        MakeFrame(320, 240, pitch);
        ClearFrame();
        const std::vector<uint8_t> pixels = FramePixels();
        EXPECT_EQ(std::count(pixels.begin(), pixels.begin() + 320 * 120, 0), 320 * 120);
        EXPECT_EQ(std::count(pixels.begin() + 320 * 120, pixels.end(), 0xFE), 320 * 120);
        EXPECT_TRUE(GuardsAreIntact());
    }
}

class Lines : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld(1);
        MakeFrame(320, 240, 336);
        ProjectionScaleX = 158.4f;
        ProjectionScaleY = 118.8f;
        ScreenCentreX = 160;
        ScreenCentreY = 120;
        LineColour = 0x105;
    }
    static long Drawn() {
        const std::vector<uint8_t> pixels = FramePixels();
        EXPECT_TRUE(GuardsAreIntact());
        return std::count(pixels.begin(), pixels.end(), 5);
    }
    static uint8_t PixelAt(int x, int y) { return FrameBuffer[y * FramePitch + x]; }
};

TEST_F(Lines, EveryColumnOrRowOfTheLongerSideGetsOnePixel) {
    const struct {
        int32_t x1, y1, x2, y2;
        long pixels;
    } cases[] = {{10, 20, 40, 20, 31}, {10, 20, 10, 50, 31}, {40, 50, 10, 20, 31},  {10, 20, 40, 50, 31},
                 {5, 60, 9, 20, 41},   {7, 7, 7, 7, 0},      {-20, 30, 10, 30, 11}, {300, 230, 400, 330, 10}};
    for (const auto& c : cases) {
        FillFrame(0);
        DrawLine2D(c.x1, c.y1, c.x2, c.y2);
        EXPECT_EQ(Drawn(), c.pixels) << c.x1 << ' ' << c.y1 << ' ' << c.x2 << ' ' << c.y2;
        if (c.pixels > 30) {
            EXPECT_EQ(PixelAt(c.x1, c.y1), 5);
            EXPECT_EQ(PixelAt(c.x2, c.y2), 5);
        }
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
    FillFrame(0);
    DrawLine3D(0, 10, -50, 0, 10, 150);  // through the eye plane
    EXPECT_GT(Drawn(), 90);
}

TEST_F(Lines, OutlinesShowPolygonsThatFaceTheCamera) {
    const int32_t polygon = AddPolygon(
        {{-50, 50, 100, 0, 0, 0}, {-50, -50, 100, 0, 0, 0}, {50, -50, 100, 0, 0, 0}, {50, 50, 100, 0, 0, 0}});
    WorldGeometry.planes[0] = {0, 0, 1, -100};
    CameraPos = {0, 0, 0};
    ViewMatrix.rotation = {{1, 0, 0, 0, 1, 0, 0, 0, 1}};
    DrawPolygonOutline(polygon);
    EXPECT_EQ(Drawn(), 2 * (239 - 80) + 2 * (179 - 60));
    FillFrame(0);
    CameraPos.z = 100;  // in the plane
    DrawPolygonOutline(polygon);
    EXPECT_EQ(Drawn(), 0);
}

TEST(Fog, SetsUpIntensitiesAndTheOffscreenFrame) {
    std::vector<uint8_t> memory(2 << 20);
    PoolInit(memory.data(), memory.data() + memory.size());
    const uint32_t before = PoolFreeTotal();
    SetupFog();
    EXPECT_EQ(IntensityTable[0], 0);
    EXPECT_EQ(IntensityTable[127], 32512);
    EXPECT_EQ(before - PoolFreeTotal(), 1048576u + 32);
    EXPECT_NE(FrameBuffer, nullptr);
}

}  // namespace
