// The order of one frame, and what the frame does besides calling others.
#include "machine.h"

#include "app/app_tables.h"
#include "app/game_frame.h"
#include "platform/display.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/screen.h"
#include "render/submit.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

TEST(GameFrame, CallsEveryModuleOnceInOrder) {
    SkyFlag = 1;
    Controls = CTL_RCTRL;  // fires in DebugKeys
    GameFrame();
    EXPECT_EQ(Fake.calls, (Calls{"FireShot", "LockSurface", "SummariseMouse", "BuildControls", "UpdateCamera",
                                 "ClearFrame", "UpdatePlayer", "DrawSky", "UpdateShots", "UpdateLights", "RenderWorld",
                                 "UnlockSurface", "SwapScreen", "HostEndOfFrame", "FrameLimiter", "FrameStep"}));
    EXPECT_EQ(FrameCount, 2);
}

TEST(GameFrame, FiresByTheControlsOfTheFrameBefore) {
    Fake.onCall = [](const std::string& call) {
        if (call == "BuildControls") Controls = CTL_RCTRL;
    };
    GameFrame();
    EXPECT_EQ(Fake.Count("FireShot"), 0);
    GameFrame();
    EXPECT_EQ(Fake.Count("FireShot"), 1);
}

TEST(GameFrame, LeavesOutTheSkyOfALevelWithoutOne) {
    GameFrame();
    EXPECT_EQ(Fake.Count("DrawSky"), 0);
}

TEST(GameFrame, TurnsTheTexturesBetweenPlayerAndSky) {
    uint8_t remap[256] = {};
    for (int i = 0; i < 256; i++)
        remap[i] = static_cast<uint8_t>(i);
    TextureRemap = remap;
    TextureCount = 15;
    FrameTicks = 7;
    SkyFlag = 1;
    int beforePlayer = 0, beforeSky = 0;
    Fake.onCall = [&](const std::string& call) {
        if (call == "UpdatePlayer") beforePlayer = remap[10];
        if (call == "DrawSky") beforeSky = remap[10];
    };
    GameFrame();
    EXPECT_EQ(beforePlayer, 10);
    EXPECT_EQ(beforeSky, 11);
}

TEST(GameFrame, DrawsIntoTheLockedSurface) {
    uint8_t surface[4];
    SurfaceMemory = surface;
    SurfacePitch = 336;
    GameFrame();
    EXPECT_EQ(FrameBuffer, surface);
    EXPECT_EQ(FramePitch, 336);
}

TEST(GameFrame, KeepsItsTargetAndUnlocksNothingWhenTheLockFails) {
    uint8_t frame[4], surface[4];
    FrameBuffer = frame;
    FramePitch = 320;
    SurfaceMemory = surface;
    SurfacePitch = 336;
    Fake.surfaceLocks = false;
    GameFrame();
    EXPECT_EQ(FrameBuffer, frame);
    EXPECT_EQ(FramePitch, 320);
    EXPECT_EQ(Fake.Count("UnlockSurface"), 0);
}

TEST(GameFrame, LocksNothingWithTheAccelerator) {
    GlideWindowOpen = 1;
    GameFrame();
    EXPECT_EQ(Fake.Count("LockSurface") + Fake.Count("UnlockSurface"), 0);
}

TEST(GameFrame, DepthScaleFollowsTheFarDistanceAndStaysFinite) {
    FarDistance = 6300.0f;
    GameFrame();
    EXPECT_FLOAT_EQ(DepthScale, 10.0f);
    FarDistance = 0.0f;  // no light map
    GameFrame();
    EXPECT_FLOAT_EQ(DepthScale, 63000.0f);
}

TEST(GameFrame, CountsPolygonsOfThisFrameOnly) {
    SubmittedPolygons = 99;
    Fake.onCall = [](const std::string& call) {
        if (call == "RenderWorld") SubmittedPolygons += 5;
    };
    GameFrame();
    EXPECT_EQ(SubmittedPolygons, 5u);
}

TEST(GameFrame, ReportsTheFrameBeforeItIsCounted) {
    uint16_t counted = 0;
    Fake.onCall = [&](const std::string& call) {
        if (call == "HostEndOfFrame") counted = FrameCount;
    };
    FrameCount = 41;
    GameFrame();
    EXPECT_EQ(counted, 41);
}

TEST(GameFrame, ReturnsWhatTheHostAsksFor) {
    Fake.framesUntilHostEnds = 2;
    EXPECT_FALSE(GameFrame());
    EXPECT_TRUE(GameFrame());
}

TEST(GameFrame, ClearsStampsWhenTheCounterWrapsAndHalfWay) {
    for (const auto& [before, expected] :
         {std::pair{0xFFFF, "FillStamps 65535"}, {0x7FFF, "FillStamps 0"}, {0x8000, ""}, {0, ""}}) {
        Fake.calls.clear();
        FrameCount = static_cast<uint16_t>(before);
        GameFrame();
        const Calls fills = Fake.Among({"FillStamps"});
        EXPECT_EQ(fills.size(), *expected == 0 ? 0u : 1u) << before;
        if (fills.empty()) continue;
        EXPECT_EQ(fills[0], expected) << before;
    }
}

}  // namespace
