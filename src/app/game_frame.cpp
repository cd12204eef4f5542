#include "app/game_frame.h"

#include "app/app_tables.h"
#include "app/between.h"
#include "app/debug_keys.h"
#include "app/shots.h"
#include "app/texture_cycle.h"
#include "camera/camera.h"
#include "character/leaf_bins.h"
#include "host/probe.h"
#include "lights/light_slots.h"
#include "math/random.h"
#include "platform/display.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/view_facts.h"
#include "render/screen.h"
#include "render/submit.h"
#include "world/bsp.h"
#include "world/draw/draw_view.h"
#include "world/world_tables.h"

#include <algorithm>
#include <vector>

namespace {

constexpr float FAR_DISTANCE_MIN = 1.0f;  // a level without a light map may leave FarDistance at 0

// The software renderer draws straight into the display's surface. After a failed lock FrameBuffer stays as it was.
// False: there is no FrameBuffer, and nothing may be filled.
bool LockTarget() {
    if (!HostWantsPicture()) FrameBuffer = nullptr;
    if (!HostWantsPicture() || GlideActive() || Failed(LockSurface())) return false;
    FrameBuffer = SurfaceMemory;
    FramePitch = SurfacePitch;
    return true;
}

// Rewrites all stamps at 0 and 32768: a stamp of 65536 frames ago, or one never written, must not equal FrameCount.
void CountFrame() {
    FrameCount++;
    // Kept as it is: FrameCount wraps to 0.
    if (FrameCount == 0) FillStamps(0xFFFF);
    if (FrameCount == 0x8000) FillStamps(0);
}

// Holds the lists that the spans of the host's report point into.
struct ReportedLists {
    std::vector<float> lights, shots;
};

ReportedLists ListLightsAndShots() {
    ReportedLists lists;
    for (const LightSlot& slot : LightSlots) {
        if (slot.type >= LIGHT_RAMP && slot.type <= LIGHT_DYNAMIC_RAMP) lists.lights.push_back(slot.intensity);
    }
    for (const Shot& shot : Shots) {
        if (shot.state == SHOT_FLYING)
            lists.shots.insert(lists.shots.end(), {shot.position.x, shot.position.y, shot.position.z});
    }
    return lists;
}

HostFrameReport DescribeFrame(const ReportedLists& lists) {
    const Actor& player = PlayerActor;
    return {
        .ticks = FrameTicks,
        .leastTicks = MinFrameTicks,
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
        .mouseFlies = CameraMode == CAMERA_FREE,
        .polygons = SubmittedPolygons,
        .dropped = DroppedPolygons,
        .lights = lists.lights,
        .shots = lists.shots,
        .random = RandState,
        .extra = {{LightSlots, sizeof LightSlots}, {Shots, sizeof Shots}},
    };
}

}  // namespace

bool GameFrame() {
    SubmittedPolygons = 0;
    DebugKeys();
    const bool locked = LockTarget();
    SummariseMouse();
    BuildControls();
    // Kept as it is: the depth buffer ends beyond a depth of about 6028, where nothing is drawn.
    DepthScale = GLIDE_DEPTH_RANGE / std::max(FAR_DISTANCE_MIN, FarDistance);
    UpdateCamera();
    ClearFrame();
    HostStage(HostStageName::Character);
    UpdatePlayer();
    TextureCycle();
    HostStage(HostStageName::Lights);
    UpdateShots();
    UpdateLights();
    KeepView();
    DrawView();
    HostStage(HostStageName::Present);
    if (locked) UnlockSurface();
    SwapScreen();
    const bool hostEnds = HostEndOfFrame(DescribeFrame(ListLightsAndShots()));
    CountFrame();
    FrameLimiter();
    FrameStep();
    return hostEnds;
}
