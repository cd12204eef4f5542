#include "walker.h"

#include "character/animation.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "world/bsp.h"
#include "world/collision.h"

#include <algorithm>
#include <cstring>

Walker::Walker(const std::vector<Corners>& polygons, uint32_t frameTicks, Vec3 position) {
    world_.AddLeaf(polygons);
    world_.Publish();
    ComputePolyFrames();
    GenerateNodeRadii();
    PlayerActor = {};
    PlayerActor.active = 1;
    PlayerActor.position = position;
    PlayerActor.states = PlayerStates.data();
    PlayerActor.animations = PlayerAnimations;
    for (uint32_t& time : PlayerActor.layerTimes)
        time = ANIM_START_TIME;
    for (AnimFileEntry* entry = PlayerAnimations; entry->path; ++entry) {
        const bool takeOff = std::strstr(entry->path, "jum1") != nullptr;
        entry->record->length = takeOff ? 60 : 100;
    }
    PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = 0.0f;
    PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z = 0.0f;
    FrameTicks = frameTicks;
    Settle();
}

void Walker::Frame(uint16_t controls) {
    Controls = controls;
    PlayerActor.randomWord = 0;
    AdvanceActor(PlayerActor);
    MoveAgainstWorld(PlayerActor);
}

void Walker::Frames(int count, uint16_t controls) {
    for (int i = 0; i < count; ++i)
        Frame(controls);
}

Corners Floor(float x, float z, float half, float height) {
    return {{x - half, height, z - half},
            {x + half, height, z - half},
            {x + half, height, z + half},
            {x - half, height, z + half}};
}

Corners WallAcross(float x0, float x1, float z, float bottom, float top) {
    return {{x0, bottom, z}, {x1, bottom, z}, {x1, top, z}, {x0, top, z}};
}
