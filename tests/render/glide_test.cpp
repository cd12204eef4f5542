// The renderer with an accelerator, seen in the pictures of the cpu board.
#include "app/app_tables.h"
#include "boards/boards.h"
#include "boards/cpu/cpu_board.h"
#include "camera/camera_tables.h"
#include "core/presentation.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/fog.h"
#include "render/glide_screen.h"
#include "render/lines.h"
#include "render/pipeline.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "render/screen.h"
#include "render/submit.h"
#include "render/textures.h"
#include "support/throwing_fatal.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

constexpr float FULL = 64 * 256;  // intensity that leaves the texture as it is

std::string GlidePath(int texture) {
    return "game\\data\\levels\\level1\\glidetex\\0" + std::to_string(texture) + ".3df";
}

// One level of 8 x 8 texels of one colour.
std::vector<uint8_t> PlainTexture(uint16_t argb1555) {
    const std::string header = "3df v1.1\nargb1555\nlod range: 8 8\naspect ratio: 1 1\n";
    std::vector<uint8_t> file(header.begin(), header.end());
    for (int i = 0; i < 64; i++)
        file.insert(file.end(), {static_cast<uint8_t>(argb1555 >> 8), static_cast<uint8_t>(argb1555)});
    return file;
}

class Glide : public testing::Test {
protected:
    void SetUp() override {
        CurrentBoard = &CpuBoard;
        UseGlide = 1;
        DisplayState = DISPLAY_NONE;
        FarDistance = 5796;
        FadeDistance = 9196;
        FogNearDistance = 2000;
        DepthScale = 63000.0f / FarDistance;
        LightMode = 0;
        LoadedLevel = 0;
        testing::internal::CaptureStdout();
        isOpen = InitGraphics(0);
        output = testing::internal::GetCapturedStdout();
        MakeWorld();
        GlideFiles = {{GlidePath(0), PlainTexture(0x7FFF)}, {GlidePath(1), PlainTexture(0x7C00)}};
        LoadTextures(MakeTextureFile({{0, 0, 0, 8, 8}, {0, 8, 0, 8, 8}, {0, 16, 0, 8, 8}}, 1));
        testing::internal::CaptureStdout();
        SetupScreen();
        SetupFog();
        testing::internal::GetCapturedStdout();
        ResetCurrentTexture();
        ClearFrame();
    }
    void TearDown() override {
        CloseGlide();
        GlideInitialised = GlideHardwareReady = GlideWindowOpen = 0;
        CurrentBoard = nullptr;
        UseGlide = 0;
    }

    // A square of half the view's width at this depth, drawn; its number.
    static int32_t DrawSquare(float z, float intensity, uint8_t texture = 0) {
        const float half = z / 2;
        const int32_t square = AppendPolygon({{-half, -half, z, 0, 255, intensity},
                                              {half, -half, z, 255, 255, intensity},
                                              {half, half, z, 255, 0, intensity},
                                              {-half, half, z, 0, 0, intensity}},
                                             texture);
        DrawMeshPolygon(square);
        return square;
    }
    static uint32_t Shown(int x, int y) { return FrontPicture()->pixels[y * FrontPicture()->width + x]; }
    // The colour of a square's middle.
    static uint32_t ColourOf(float intensity, uint8_t texture = 0, float z = 500) {
        DrawSquare(z, intensity, texture);
        SwapScreen();
        ClearFrame();
        return Shown(320, 240);
    }

    bool isOpen = false;
    std::string output;
};

TEST_F(Glide, OpensItsOwnScreenWhateverTheSoftwareWouldUse) {
    EXPECT_TRUE(isOpen);
    EXPECT_EQ(DisplayState, DISPLAY_NONE);
    EXPECT_EQ(ScreenResIndex, 2);
    EXPECT_EQ(ScreenWidth, 640);
    EXPECT_TRUE(GlideInitialised && GlideHardwareReady && GlideActive());
    EXPECT_EQ(output.find("i = 0,  W = 1.000000\ni = 1,  W = 1.142857\n"), 0u);
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 63);
    TearDown();
    UseGlide = 1;
    EXPECT_TRUE(InitGraphics(0));
    EXPECT_EQ(DisplayState, DISPLAY_FULL_SCREEN) << "without a board the software draws";
    EXPECT_EQ(ScreenWidth, 320);
}

TEST_F(Glide, LightDarkensBelowItsMiddleAndAddsAbove) {
    EXPECT_EQ(ColourOf(FULL, 1), 0xFF0000u);
    EXPECT_EQ(ColourOf(FULL / 2, 1), 0x800000u);
    EXPECT_EQ(ColourOf(0, 1), 0u);
    EXPECT_EQ(ColourOf(80 * 256, 1), 0xFF4040u);
    EXPECT_EQ(ColourOf(127 * 256, 1), 0xFFFCFCu);
    LightMode = 2;
    EXPECT_EQ(ColourOf(127 * 256, 1), 0u);
    EXPECT_EQ(ColourOf(0, 1), 0xFFFCFCu);
}

TEST_F(Glide, TexturesFollowTheRemapAndMissingOnesKeepTheirHandle) {
    TextureRemap[1] = 0;
    EXPECT_EQ(ColourOf(FULL, 1), 0xFFFFFFu);
    TextureRemap[1] = 1;
    EXPECT_EQ(ColourOf(FULL, 1), 0xFF0000u);
    EXPECT_EQ(TextureHandles[2], 0u) << "a missing file leaves the first texture";
    EXPECT_EQ(ColourOf(FULL, 2), 0xFFFFFFu);
    GlideFiles[GlidePath(2)] = PlainTexture(0);
    GlideFiles[GlidePath(2)].pop_back();
    try {
        L_LoadGlideTexture(0);
        FAIL();
    } catch (const FatalThrown& fatal) {
        EXPECT_EQ(fatal.code, -1);
        EXPECT_EQ(fatal.text, "L_LoadGlideTexture (Load #1)");
        EXPECT_EQ(fatal.path, GlidePath(2));
    }
}

TEST_F(Glide, FogAndTheSkysStates) {
    const uint32_t fogColour = LevelTable[0].fogColour;
    const auto towards = [&](uint32_t pixel, int shift) {
        return (static_cast<double>(pixel >> shift & 0xFF) - 255) /
               (static_cast<double>(fogColour >> shift & 0xFF) - 255);
    };
    EXPECT_EQ(ColourOf(FULL, 0, 1900), 0xFFFFFFu);
    EXPECT_NEAR(towards(ColourOf(FULL, 0, 5700), 0), 0.38, 0.02);
    SetSkyStates(true);
    EXPECT_EQ(ColourOf(127 * 256, 1), 0xFF0000u) << "no light is added";
    DrawSquare(500, FULL, 1);
    SetSkyStates(false);
    EXPECT_EQ(ColourOf(FULL, 0, 600), 0xFFFFFFu) << "the sky hides nothing";
    SetFogSwitchStates(false);
    EXPECT_EQ(ColourOf(FULL, 0, 5700), 0xFFFFFFu);
    SetFogSwitchStates(true);
    FogNearDistance = 6000;
    ReloadFogTable();
    EXPECT_EQ(ColourOf(FULL, 0, 5700), 0xFFFFFFu);
}

}  // namespace
