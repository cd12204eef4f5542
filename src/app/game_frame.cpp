#include "app/game_frame.h"

#include "app/app_tables.h"
#include "app/debug_keys.h"
#include "app/shots.h"
#include "app/texture_cycle.h"
#include "camera/camera.h"
#include "host/probe.h"
#include "lights/light_slots.h"
#include "math/random.h"
#include "platform/display.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "render/screen.h"
#include "render/submit.h"
#include "world/bsp.h"
#include "world/draw/render_world.h"
#include "world/static_object.h"
#include "world/world_tables.h"

#include <algorithm>

namespace {

constexpr float DEPTH_RANGE = 63000.0f;   // accelerator depth at FarDistance
constexpr float FAR_DISTANCE_MIN = 1.0f;  // a level without a light map may have none

// The software renderer draws straight into the display's surface. A failed lock leaves the target as it was.
bool LockTarget() {
    if (GlideActive() || Failed(LockSurface())) return false;
    FrameBuffer = SurfaceMemory;
    FramePitch = SurfacePitch;
    return true;
}

// Stamps of 65536 frames ago, and of tables never stamped, must not pass for this frame's.
void CountFrame() {
    FrameCount++;
    if (FrameCount == 0) FillStamps(0xFFFF);
    if (FrameCount == 0x8000) FillStamps(0);
}

HostFrameReport DescribeFrame() {
    const Actor& player = PlayerActor;
    return {
        .ticks = FrameTicks,
        .level = LoadedLevel + 1,
        .state = player.state,
        .position = {player.position.x, player.position.y, player.position.z},
        .velocity = {player.velocity.x, player.velocity.y, player.velocity.z},
        .heading = player.angles.y,
        .contact = player.onContact,
        .slope = player.contactSlope,
        .time0 = player.layerTimes[0],
        .camera = {CameraPos.x, CameraPos.y, CameraPos.z},
        .cameraAngles = {CameraAngles.x, CameraAngles.y, CameraAngles.z},
        .polygons = SubmittedPolygons,
        .extra = {{&RandState, sizeof RandState}, {LightSlots, sizeof LightSlots}},
    };
}

}  // namespace

bool GameFrame() {
    SubmittedPolygons = 0;
    DebugKeys();
    const bool locked = LockTarget();
    SummariseMouse();
    BuildControls();
    DepthScale = DEPTH_RANGE / std::max(FAR_DISTANCE_MIN, FarDistance);
    UpdateCamera();
    ClearFrame();
    UpdatePlayer();
    TextureCycle();
    if (SkyFlag != 0) DrawSky();
    UpdateShots();
    UpdateLights();
    RenderWorld();
    if (locked) UnlockSurface();
    SwapScreen();
    const bool hostEnds = HostEndOfFrame(DescribeFrame());
    CountFrame();
    FrameLimiter();
    FrameStep();
    return hostEnds;
}
