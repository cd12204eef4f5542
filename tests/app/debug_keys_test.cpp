// The development keys, and the animated textures.
#include "machine.h"

#include "app/debug_keys.h"
#include "app/texture_cycle.h"
#include "camera/camera_tables.h"
#include "host/dinput.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/screen.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <tuple>

namespace {

void Hold(int key, int frames) {
    Fake.held = Fake.hit = {key};
    for (int frame = 0; frame < frames; frame++) {
        DebugKeys();
        Fake.hit.clear();
    }
}

struct KeyRow {
    int key, frames;  // held for so long
    float& value;
    float before, after;
};

TEST(DebugKeys, MoveDistancesWhileHeldAndLightOnceAStroke) {
    const KeyRow rows[] = {
        {DIK_O, 3, FarDistance, 5000, 5300},
        {DIK_L, 3, FarDistance, 5000, 4700},
        {DIK_L, 3, FarDistance, 150, 1},
        {DIK_I, 3, FadeDistance, 4000, 4300},
        {DIK_K, 3, FadeDistance, 4000, 3700},
        {DIK_K, 3, FadeDistance, 1150, 1000},     // never below the near distance
        {DIK_F1, 1, FadeDistance, -900, 1000},    // whichever key is held
        {DIK_U, 3, FogNearDistance, 1000, 1300},  //
        {DIK_J, 20, FogNearDistance, 1000, -1000},
        {DIK_Y, 3, LightLevel, 1, 0.98f},
        {DIK_H, 3, LightLevel, 1, 1.02f},
        {DIK_T, 3, LightContrast, 1, 0.98f},
        {DIK_G, 3, LightContrast, 1, 1.02f},
    };
    for (const int32_t accelerator : {0, 1})
        for (const KeyRow& row : rows) {
            GlideWindowOpen = accelerator;
            FogNearDistance = 1000;
            row.value = row.before;
            Fake.calls.clear();
            Hold(row.key, row.frames);
            EXPECT_FLOAT_EQ(row.value, row.after) << row.key;
            const bool light = &row.value == &LightLevel || &row.value == &LightContrast;
            EXPECT_EQ(Fake.Count("ApplyLightLevel"), light);
            EXPECT_EQ(Fake.Count("ReloadFogTable"), light || row.key == DIK_F1 ? 0 : accelerator * row.frames);
        }
}

TEST(DebugKeys, SwitchCameraLightModeAndFogOnTheStroke) {
    Hold(DIK_F6, 2);
    EXPECT_EQ(CameraMode, CAMERA_FREE);
    Hold(DIK_F5, 2);
    EXPECT_EQ(CameraMode, CAMERA_FOLLOW);
    LightMode = 2;
    for (const int mode : {3, 0}) {
        Hold(DIK_D, 2);
        EXPECT_EQ(LightMode, mode);
    }
    for (const int fog : {0, 1, 0, 1}) {
        Hold(DIK_W, 2);
        EXPECT_EQ(FogSwitch, fog);
        if (fog == 1) GlideWindowOpen = 1;
    }
    EXPECT_EQ(Fake.calls, (Calls{"SetFogSwitchStates 0", "SetFogSwitchStates 1"})) << "software has no states to set";
}

TEST(TextureCycle, TurnsEverySevenTicksAndStepsOverAnEqualNeighbour) {
    using Entries = std::array<uint8_t, 5>;
    const std::tuple<uint32_t, int, Entries> rows[] = {{7, 15, {12, 12, 13, 14, 12}},  {7, 15, {13, 13, 14, 12, 13}},
                                                       {7, 15, {14, 14, 12, 13, 14}},  {6, 15, {14, 14, 12, 13, 14}},
                                                       {12, 15, {12, 12, 13, 14, 12}},  // once, however long the frame
                                                       {7, 14, {12, 12, 13, 14, 12}}};  // a level with few textures
    std::array<uint8_t, 256> remap;
    TextureRemap = remap.data();
    TextureCount = 15;
    FrameTicks = 12;  // whatever an earlier test left counted
    TextureCycle();
    std::iota(remap.begin(), remap.end(), uint8_t{0});
    remap[11] = 10;
    for (const auto& [ticks, textures, expected] : rows) {
        FrameTicks = ticks;
        TextureCount = static_cast<uint8_t>(textures);
        TextureCycle();
        EXPECT_EQ((Entries{remap[10], remap[11], remap[12], remap[13], remap[14]}), expected);
    }
    EXPECT_EQ(remap[9] + remap[15], 9 + 15);
}

}  // namespace
