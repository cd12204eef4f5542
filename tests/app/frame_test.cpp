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

#include <array>
#include <map>
#include <numeric>

namespace {

TEST(GameFrame, CallsEveryModuleOnceInOrder) {
    std::array<uint8_t, 256> remap;
    std::iota(remap.begin(), remap.end(), uint8_t{0});
    TextureRemap = remap.data();
    TextureCount = 15;
    FrameTicks = 7;
    SkyFlag = 1;
    Controls = CTL_RCTRL;  // of the frame before: the development keys fire by them
    SubmittedPolygons = 99;
    static uint8_t surface[4];
    SurfaceMemory = surface;
    SurfacePitch = 336;
    struct Moment {
        int texture;
        uint32_t polygons, frame;
    };
    std::map<std::string, Moment> at;
    Fake.onCall = [&](const std::string& call) {
        at[call] = {remap[10], SubmittedPolygons, FrameCount};
        if (call == "BuildControls") Controls = 0;
    };
    EXPECT_FALSE(GameFrame());
    EXPECT_EQ(Fake.calls, (Calls{"FireShot", "LockSurface", "SummariseMouse", "BuildControls", "UpdateCamera",
                                 "ClearFrame", "UpdatePlayer", "DrawSky", "UpdateShots", "UpdateLights", "RenderWorld",
                                 "UnlockSurface", "SwapScreen", "HostEndOfFrame", "FrameLimiter", "FrameStep"}));
    EXPECT_EQ(at["UpdatePlayer"].texture, 10) << "textures turn between player and sky";
    EXPECT_EQ(at["DrawSky"].texture, 11);
    EXPECT_EQ(at["RenderWorld"].polygons, 0u) << "those of this frame only";
    EXPECT_EQ(at["HostEndOfFrame"].frame, 1u) << "reported before it is counted";
    EXPECT_EQ(at["FrameLimiter"].frame, 2u);
    EXPECT_EQ(FrameBuffer, surface);
    EXPECT_EQ(FramePitch, 336);
    SkyFlag = 0;
    Fake.framesUntilHostEnds = 1;
    EXPECT_TRUE(GameFrame());
    EXPECT_EQ(Fake.Count("DrawSky"), 1) << "a level without one";
    EXPECT_EQ(Fake.Count("FireShot"), 1);
}

TEST(GameFrame, KeepsItsTargetAndUnlocksNothingWithoutALock) {
    static uint8_t frame[4], surface[4];
    FrameBuffer = frame;
    SurfaceMemory = surface;
    Fake.surfaceLocks = false;
    FarDistance = 0.0f;  // a level without a light map
    for (const int32_t accelerator : {0, 1}) {
        GlideWindowOpen = accelerator;
        GameFrame();
        EXPECT_EQ(Fake.Among({"LockSurface", "UnlockSurface"}), Calls{"LockSurface"});
        EXPECT_EQ(FrameBuffer, frame);
        EXPECT_FLOAT_EQ(DepthScale, 63000.0f);
    }
}

TEST(GameFrame, ClearsStampsWhenTheCounterWrapsAndHalfWay) {
    const std::pair<uint16_t, Calls> rows[] = {
        {0xFFFF, {"FillStamps 65535"}}, {0x7FFF, {"FillStamps 0"}}, {0x8000, {}}, {0, {}}};
    for (const auto& [before, fills] : rows) {
        Fake.calls.clear();
        FrameCount = before;
        GameFrame();
        EXPECT_EQ(Fake.Among({"FillStamps"}), fills) << before;
    }
}

}  // namespace
