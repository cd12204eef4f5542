#include "player/handlers.h"

#include "character/animation.h"
#include "math/vectors.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/walking_facts.h"

int16_t JumpHeld;

namespace {

// Speeds are in world units a frame, drives in world units a frame that each tick adds. Animation times are in the
// units of ANIM_TICK_UNITS (records/table_facts.h).
constexpr float TURN_RATE = 2.0f;  // degrees a tick
constexpr float AIR_STEER = 0.1f;  // drive in the direction of the held key, in the air

constexpr float LEAP_SPEED = 2.0f;   // forward speed above which a running jump is a leap
constexpr float LEAP_SHARE = 1.25f;  // a leap starts with the forward speed times this
constexpr float HOP_SHARE = 0.5f;    // a hop starts with the forward speed times this
constexpr float LEAP_PUSH = 1.39f;   // drive forward meanwhile
constexpr float HOP_PUSH = 0.4f;     // drive forward while the up key is down

// A blend lasts until the clock of the new animation has reached this time.
constexpr int32_t USUAL_BLEND = 75;
constexpr int32_t NO_BLEND = 0;
constexpr uint32_t CROUCH_START = 30;  // a jump leaves out the beginning of the crouch
constexpr int32_t CROUCH_BLEND = 10;   // the blend into a crouch ends at this time of its animation
// A leap that goes over into the run leaves out this much of the run's animation.
constexpr uint32_t LANDING_START = 40;

// A fidget begins when (Rand() & bits) + the ticks spent in the state exceed the limit.
constexpr int32_t STAND_RANDOM_BITS = 0x3FF;
constexpr int32_t STAND_TICKS = 1500;
constexpr int32_t HALT_RANDOM_BITS = 63;
constexpr int32_t HALT_TICKS = 100;
constexpr int32_t ARMS_FOLDED_TICKS = 400;  // how long the arms stay folded

bool Held(uint16_t control) {
    return (Controls & control) != 0;
}

void Change(PlayerState state, uint32_t start, int32_t blend) {
    SetActorState(PlayerActor, state, start, blend);
}

void Start(PlayerState state, int32_t blend = USUAL_BLEND) {
    Change(state, ANIM_START_TIME, blend);
}

bool RandomIsOdd() {
    return (PlayerActor.randomWord & 1) != 0;
}

void TurnPlayer() {
    if (!PlayerActor.onContact) return;
    const float turn = TURN_RATE * static_cast<float>(FrameTicks);
    if (Held(CTL_LEFT)) PlayerActor.angles.y += turn;
    if (Held(CTL_RIGHT)) PlayerActor.angles.y -= turn;
}

void AirSteer() {
    if (Held(CTL_UP)) {
        PlayerActor.localMove.z = AIR_STEER;
    } else if (Held(CTL_DOWN)) {
        PlayerActor.localMove.z = -AIR_STEER;
    }
    if (Held(CTL_RIGHT)) {
        PlayerActor.localMove.x = AIR_STEER;
    } else if (Held(CTL_LEFT)) {
        PlayerActor.localMove.x = -AIR_STEER;
    }
}

float ForwardSpeed() {
    RotateVector(PlayerActor.velocity.x, PlayerActor.velocity.y, PlayerActor.velocity.z, PlayerActor.rotation);
    return RotatedVector.z;
}

bool WantsJump() {
    return Held(CTL_SPACE) && PlayerActor.onContact;
}

void BeginJump() {
    // Kept as it is: the velocity is zeroed, but the state that is left still drives this frame.
    PlayerActor.velocity = {};
    JumpHeld = 1;
}

void TryStandingJump() {
    if (!WantsJump()) return;
    Change(STATE_HOP_CROUCH, CROUCH_START, CROUCH_BLEND);
    PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = ForwardSpeed() * HOP_SHARE;
    BeginJump();
}

void TryRunningJump() {
    if (!WantsJump()) return;
    const float forward = ForwardSpeed();
    if (forward <= LEAP_SPEED) {
        PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = forward * HOP_SHARE;
        Change(STATE_HOP_CROUCH, CROUCH_START, CROUCH_BLEND);
    } else {
        PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z = forward * LEAP_SHARE;
        Change(STATE_LEAP_CROUCH, CROUCH_START, CROUCH_BLEND);
    }
    BeginJump();
}

void StartRunOrBack() {
    if (Held(CTL_UP)) Start(STATE_READY);
    if (Held(CTL_DOWN)) Start(STATE_BACK);
}

}  // namespace

void StandHandler() {
    if ((PlayerActor.randomWord & STAND_RANDOM_BITS) + PlayerActor.ticksInState > STAND_TICKS) {
        Start(RandomIsOdd() ? STATE_FOLD_ARMS : STATE_HALT, NO_BLEND);
    }
    if (Held(CTL_UP)) Start(Held(CTL_SHIFT) ? STATE_WALK : STATE_READY);
    if (Held(CTL_DOWN)) Start(STATE_BACK);
    TryStandingJump();
    TurnPlayer();
}

void FidgetHoldHandler() {
    if (PlayerActor.ticksInState > ARMS_FOLDED_TICKS) Start(STATE_UNFOLD_ARMS, NO_BLEND);
    StartRunOrBack();
    TurnPlayer();
}

void FidgetHandler() {
    StartRunOrBack();
    TurnPlayer();
}

void HaltHandler() {
    if ((PlayerActor.randomWord & HALT_RANDOM_BITS) + PlayerActor.ticksInState > HALT_TICKS) {
        Start(RandomIsOdd() ? STATE_FIDGET_RIGHT : STATE_FIDGET_LEFT);
    }
    if (Held(CTL_UP)) Start(STATE_RUN_UP);
    if (Held(CTL_DOWN)) Start(STATE_BACK);
    TryStandingJump();
    TurnPlayer();
}

void RunHandler() {
    if (!Held(CTL_UP)) Start(STATE_HALT);
    if (Held(CTL_SHIFT)) Start(STATE_WALK);
    TryRunningJump();
    TurnPlayer();
}

void WalkHandler() {
    if (!Held(CTL_UP)) Start(STATE_HALT);
    if (!Held(CTL_SHIFT)) Start(STATE_RUN);
    TryRunningJump();
    TurnPlayer();
}

void BackHandler() {
    if (!Held(CTL_DOWN)) Start(STATE_STAND);
    TurnPlayer();
}

void LeapTakeOffHandler() {
    if (PlayerActor.velocity.y >= 0.0f) {
        PlayerActor.localMove.y = 0.0f;
        Start(STATE_LEAP_AIR, NO_BLEND);
    }
    AirSteer();
    if (!JumpHeld) return;
    if (Held(CTL_SPACE)) {
        PlayerActor.localMove.y = LEAP_LIFT;
        PlayerActor.localMove.z += LEAP_PUSH;
    } else {
        JumpHeld = 0;
    }
}

void LeapAirHandler() {
    if (PlayerActor.contactSlope > LANDING_SLOPE) Change(STATE_RUN, LANDING_START, USUAL_BLEND);
    AirSteer();
}

void HopTakeOffHandler() {
    if (PlayerActor.velocity.y >= 0.0f) {
        PlayerActor.localMove.y = 0.0f;
        Start(STATE_HOP_AIR, NO_BLEND);
    }
    AirSteer();
    if (Held(CTL_UP)) PlayerActor.localMove.z += HOP_PUSH;
    if (!JumpHeld) return;
    if (Held(CTL_SPACE)) {
        PlayerActor.localMove.y = HOP_LIFT;
    } else {
        JumpHeld = 0;
    }
}

void HopAirHandler() {
    if (PlayerActor.contactSlope > LANDING_SLOPE) Change(STATE_HOP_LAND, PlayerActor.layerTimes[0], USUAL_BLEND);
    AirSteer();
}
