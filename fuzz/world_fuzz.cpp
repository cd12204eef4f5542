// A world file: what LoadBspWorld accepts can be measured, looked at from anywhere, drawn, probed and walked.
#include "camera/camera.h"
#include "math/world_planes.h"
#include "platform/timer.h"
#include "records/character_records.h"
#include "render/render_tables.h"
#include "support/game_file.h"
#include "support/software_frame.h"
#include "support/view.h"
#include "world/bsp.h"
#include "world/collision.h"
#include "world/draw/draw_view.h"
#include "world/world_tables.h"

namespace {

void LookFrom(const Vec3& eye, float yaw) {
    LookFrom(eye, 15.0f, yaw);
    ++FrameCount;
    DrawView();
    CameraRayDistance(eye, {eye.x + 100.0f, eye.y + 60.0f, eye.z - 200.0f});
}

void WalkFrom(const Vec3& place) {
    StateRecord states[1] = {};
    Actor actor = {};
    actor.states = states;
    actor.position = {place.x, place.y + 110.0f, place.z};
    FrameTicks = 4;
    try {
        for (const Vec3& velocity : {Vec3{30, -40, 5}, Vec3{-300, 10, 200}, Vec3{0, -2000, 0}}) {
            actor.velocity = velocity;
            MoveAgainstWorld(actor);
        }
    } catch (const FatalThrown&) {  // too many contacts
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SetUpSoftwareFrame();
    try {
        LoadBspWorld(BeginGameFile(data, size));
    } catch (const FatalThrown&) {
        return 0;
    }
    GenerateVertexNormals();
    SetStaticMarks();
    GenerateNodeRadii();
    for (int i = 0; i < 4; ++i)
        LookFrom(Vec3{0, 60, 0}, static_cast<float>(i) * 90.0f);
    const Vec3 first = WorldGeometry.file.points > 0 ? WorldGeometry.points[0].position : Vec3{};
    LookFrom(first, 45.0f);
    WalkFrom(first);
    FogSwitch = 0;
    LookFrom(first, 200.0f);
    FogSwitch = FOG_SWITCH_ON;
    return 0;
}
