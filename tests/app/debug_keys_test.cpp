// The development keys, and the animated textures.
#include "machine.h"

#include "app/app_tables.h"
#include "app/debug_keys.h"
#include "app/texture_cycle.h"
#include "camera/camera_tables.h"
#include "character/character_tables.h"
#include "host/dinput.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/screen.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <array>

namespace {

void Press(int key) {
    Fake.hit = Fake.held = {key};
    DebugKeys();
    Fake.hit.clear();
    DebugKeys();  // still held: keys that act on the stroke must not act again
    Fake.held.clear();
}

void Hold(int key, int frames) {
    Fake.held = {key};
    for (int frame = 0; frame < frames; frame++)
        DebugKeys();
    Fake.held.clear();
}

TEST(DebugKeys, ChooseTheCameraOnTheStroke) {
    Press(DIK_F6);
    EXPECT_EQ(CameraMode, CAMERA_FREE);
    Press(DIK_F5);
    EXPECT_EQ(CameraMode, CAMERA_FOLLOW);
}

TEST(DebugKeys, PrintTheCameraPositionTruncated) {
    CameraPos = {-1.9f, 2.9f, 300.0f};
    testing::internal::CaptureStdout();
    Press(DIK_F8);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Camera Coords     -1, 2, 300 \n");
}

TEST(DebugKeys, DGoesRoundFourLightModesWithoutApplyingThem) {
    LightMode = 2;
    Press(DIK_D);
    EXPECT_EQ(LightMode, 3);
    Press(DIK_D);
    EXPECT_EQ(LightMode, 0);
    EXPECT_EQ(Fake.Count("ApplyLightLevel"), 0);
}

TEST(DebugKeys, WSwitchesFogOffThenOn) {
    Press(DIK_W);
    EXPECT_EQ(FogSwitch, 0);
    EXPECT_EQ(Fake.Among({"SetFogSwitchStates"}).size(), 0u) << "software has no states to set";
    Press(DIK_W);
    EXPECT_EQ(FogSwitch, 1);
    GlideWindowOpen = 1;
    Press(DIK_W);
    Press(DIK_W);
    EXPECT_EQ(Fake.Among({"SetFogSwitchStates"}),
              (std::vector<std::string>{"SetFogSwitchStates 0", "SetFogSwitchStates 1"}));
}

TEST(DebugKeys, RPutsThePlayerBackToTheStartAndNothingElse) {
    LoadedLevel = 4;
    PlayerActor.position = {1, 2, 3};
    PlayerActor.velocity = {4, 5, 6};
    Hold(DIK_R, 1);
    EXPECT_EQ(PlayerActor.position.x, -15.0f);
    EXPECT_EQ(PlayerActor.position.y, 507.0f);
    EXPECT_EQ(PlayerActor.position.z, 1599.0f);
    EXPECT_EQ(PlayerActor.velocity.y, 5.0f);
}

TEST(DebugKeys, DistancesMoveWhileHeld) {
    struct Row {
        int key;
        float& value;
        float expected;
    };
    const Row rows[] = {
        {DIK_O, FarDistance, 5300},  {DIK_L, FarDistance, 4700},     {DIK_I, FadeDistance, 4300},
        {DIK_K, FadeDistance, 3700}, {DIK_U, FogNearDistance, 1300}, {DIK_J, FogNearDistance, 700},
    };
    for (const Row& row : rows) {
        FarDistance = 5000;
        FadeDistance = 4000;
        FogNearDistance = 1000;
        Hold(row.key, 3);
        EXPECT_EQ(row.value, row.expected) << row.key;
    }
}

TEST(DebugKeys, FarDistanceStopsAtOne) {
    FarDistance = 150;
    Hold(DIK_L, 1);
    EXPECT_EQ(FarDistance, 50.0f);
    Hold(DIK_L, 2);
    EXPECT_EQ(FarDistance, 1.0f);
}

TEST(DebugKeys, FadeNeverFallsBelowFogNear) {
    FadeDistance = 1150;
    FogNearDistance = 1000;
    Hold(DIK_U, 3);
    EXPECT_EQ(FogNearDistance, 1300.0f);
    EXPECT_EQ(FadeDistance, 1300.0f);
    Hold(DIK_K, 5);
    EXPECT_EQ(FadeDistance, 1300.0f);
    Hold(DIK_J, 20);
    EXPECT_EQ(FogNearDistance, -700.0f);
    FadeDistance = -900;
    Hold(DIK_F1, 1);  // also with no key of the six held
    EXPECT_EQ(FadeDistance, -700.0f);
}

TEST(DebugKeys, FogTableIsReloadedOnlyWithTheAcceleratorAndAKeyHeld) {
    for (const int key : {DIK_O, DIK_L, DIK_I, DIK_K, DIK_U, DIK_J}) {
        GlideWindowOpen = 0;
        Hold(key, 2);
        EXPECT_EQ(Fake.Count("ReloadFogTable"), 0) << key;
        GlideWindowOpen = 1;
        Hold(key, 2);
        EXPECT_EQ(Fake.Count("ReloadFogTable"), 2) << key;
        Hold(DIK_UP, 3);
        EXPECT_EQ(Fake.Count("ReloadFogTable"), 2) << key;
        Fake.calls.clear();
    }
}

TEST(DebugKeys, LightLevelsMoveOnceAStrokeAndAreApplied) {
    LightLevel = LightContrast = 1.0f;
    Press(DIK_Y);
    EXPECT_FLOAT_EQ(LightLevel, 0.98f);
    Press(DIK_H);
    Press(DIK_H);
    EXPECT_FLOAT_EQ(LightLevel, 1.02f);
    Press(DIK_T);
    EXPECT_FLOAT_EQ(LightContrast, 0.98f);
    Press(DIK_G);
    EXPECT_FLOAT_EQ(LightContrast, 1.0f);
    EXPECT_EQ(Fake.Count("ApplyLightLevel"), 5);
}

class TextureCycleTest : public testing::Test {
protected:
    TextureCycleTest() {
        TextureRemap = remap.data();
        TextureCount = 15;
        for (size_t i = 0; i < remap.size(); i++)
            remap[i] = static_cast<uint8_t>(i);
        FrameTicks = 12;  // whatever an earlier test left counted
        const auto kept = remap;
        TextureCycle();
        remap = kept;
    }

    std::array<int, 5> Entries() const { return {remap[10], remap[11], remap[12], remap[13], remap[14]}; }

    std::array<uint8_t, 256> remap;
};

TEST_F(TextureCycleTest, TurnsInPlace) {
    using Row = std::array<int, 5>;
    FrameTicks = 7;
    for (const Row& expected : {Row{11, 12, 13, 14, 11}, Row{12, 13, 14, 11, 12}, Row{13, 14, 11, 12, 13},
                                Row{14, 11, 12, 13, 14}, Row{11, 12, 13, 14, 11}}) {
        TextureCycle();
        EXPECT_EQ(Entries(), expected);
    }
    EXPECT_EQ(remap[9], 9);
    EXPECT_EQ(remap[15], 15);
}

TEST_F(TextureCycleTest, StepsOverAnEqualNeighbour) {
    remap[11] = 10;
    FrameTicks = 7;
    TextureCycle();
    EXPECT_EQ(Entries(), (std::array<int, 5>{12, 12, 13, 14, 12}));
}

TEST_F(TextureCycleTest, WaitsForSevenTicks) {
    FrameTicks = 1;
    for (int frame = 0; frame < 6; frame++)
        TextureCycle();
    EXPECT_EQ(remap[10], 10);
    TextureCycle();
    EXPECT_EQ(remap[10], 11);
    FrameTicks = 12;
    TextureCycle();
    EXPECT_EQ(remap[10], 12) << "one turn however long the frame";
}

TEST_F(TextureCycleTest, LeavesALevelWithFewTexturesAlone) {
    TextureCount = 14;
    FrameTicks = 7;
    TextureCycle();
    EXPECT_EQ(remap[10], 10);
}

}  // namespace
