#include "explorer/walker.h"

#include "character/animation.h"
#include "formats/light_files.h"
#include "math/random.h"
#include "memory/pool.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/light_facts.h"
#include "world/bsp.h"
#include "world/collision.h"
#include "world/world_tables.h"

#include <algorithm>

Walker::Walker(const WalkerLevel& level) : pool_(POOL_BYTES, 0), ticks_(level.ticks) {
    PoolInit(pool_.data(), pool_.data() + pool_.size());
    LoadBspWorld(level.world.c_str());
    GenerateNodeRadii();
    player_.Load(level.character, level.start);
    PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z = 0;
    JumpHeld = 0;
    if (!level.lightSlots.empty()) {
        for (const LightSlotRecord& slot : ReadLightSlotFile(level.lightSlots).slots) {
            if (slot.type == LIGHT_FLICKER) flickerTimers_.push_back(slot.timer);
        }
    }
    RandState = RAND_SEED;
    FindBox();
}

Walker::~Walker() {
    PlayerActor = {};
    WorldGeometry = {};
    PoolForget();
}

void Walker::FindBox() {
    low_ = high_ = WorldGeometry.points[0].position;
    for (uint32_t i = 0; i < WorldGeometry.file.points; ++i) {
        const Vec3 p = WorldGeometry.points[i].position;
        low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), std::min(low_.z, p.z)};
        high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y), std::max(high_.z, p.z)};
    }
}

// Each frame draws one for the player and then those of the lights.
int32_t Walker::RandomWordOf(uint32_t frame) {
    while (randomWords_.size() <= frame) {
        randomWords_.push_back(Rand());
        for (int32_t& timer : flickerTimers_) {
            if (--timer > 0) continue;
            Rand();
            timer = Rand() & FLICKER_TIME_BITS;
        }
    }
    return randomWords_[frame];
}

void Walker::Frame(uint16_t controls) {
    Controls = controls;
    FrameTicks = frames_ == 0 ? 0 : ticks_;
    AdvanceActor(PlayerActor);
    MoveAgainstWorld(PlayerActor);
    PlayerActor.randomWord = RandomWordOf(frames_++);
}

Body Walker::Save() const {
    return {PlayerActor, PlayerStates[STATE_HOP_TAKE_OFF].impulse.z, PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z,
            JumpHeld, frames_};
}

void Walker::Restore(const Body& body) {
    PlayerActor = body.actor;
    PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = body.hopSpeed;
    PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z = body.leapSpeed;
    JumpHeld = body.jumpHeld;
    frames_ = body.frames;
}
