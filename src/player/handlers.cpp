#include "player/handlers.h"

#include "character/animation.h"
#include "math/vectors.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"
#include "records/walking_facts.h"

int16_t JumpHeld;

namespace {

constexpr float TURN_RATE = 2.0f;   // degrees a tick
constexpr float AIR_STEER = 0.1f;   // per tick
constexpr float LEAP_SPEED = 2.0f;  // forward speed above which a running jump is a leap
constexpr int32_t USUAL_BLEND = 75;

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
    PlayerActor.velocity = {};
    JumpHeld = 1;
}

void TryStandingJump() {
    if (!WantsJump()) return;
    Change(STATE_HOP_CROUCH, 30, 10);
    PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = ForwardSpeed() * 0.5f;
    BeginJump();
}

void TryRunningJump() {
    if (!WantsJump()) return;
    const float forward = ForwardSpeed();
    if (forward <= LEAP_SPEED) {
        PlayerStates[STATE_HOP_TAKE_OFF].impulse.z = forward * 0.5f;
        Change(STATE_HOP_CROUCH, 30, 10);
    } else {
        PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z = forward * 1.25f;
        Change(STATE_LEAP_CROUCH, 30, 10);
    }
    BeginJump();
}

void StartRunOrBack() {
    if (Held(CTL_UP)) Start(STATE_READY);
    if (Held(CTL_DOWN)) Start(STATE_BACK);
}

}  // namespace

void StandHandler() {
    if ((PlayerActor.randomWord & 0x3FF) + PlayerActor.ticksInState > 1500) {
        Start(RandomIsOdd() ? STATE_FOLD_ARMS : STATE_HALT, 0);
    }
    if (Held(CTL_UP)) Start(Held(CTL_SHIFT) ? STATE_WALK : STATE_READY);
    if (Held(CTL_DOWN)) Start(STATE_BACK);
    TryStandingJump();
    TurnPlayer();
}

void FidgetHoldHandler() {
    if (PlayerActor.ticksInState > 400) Start(STATE_UNFOLD_ARMS, 0);
    StartRunOrBack();
    TurnPlayer();
}

void FidgetHandler() {
    StartRunOrBack();
    TurnPlayer();
}

void HaltHandler() {
    if ((PlayerActor.randomWord & 63) + PlayerActor.ticksInState > 100) {
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
        Start(STATE_LEAP_AIR, 0);
    }
    AirSteer();
    if (!JumpHeld) return;
    if (Held(CTL_SPACE)) {
        PlayerActor.localMove.y = 1.1f;
        PlayerActor.localMove.z += 1.39f;
    } else {
        JumpHeld = 0;
    }
}

void LeapAirHandler() {
    if (PlayerActor.contactSlope > LANDING_SLOPE) Change(STATE_RUN, 40, USUAL_BLEND);
    AirSteer();
}

void HopTakeOffHandler() {
    if (PlayerActor.velocity.y >= 0.0f) {
        PlayerActor.localMove.y = 0.0f;
        Start(STATE_HOP_AIR, 0);
    }
    AirSteer();
    if (Held(CTL_UP)) PlayerActor.localMove.z += 0.4f;
    if (!JumpHeld) return;
    if (Held(CTL_SPACE)) {
        PlayerActor.localMove.y = 5.4f;
    } else {
        JumpHeld = 0;
    }
}

void HopAirHandler() {
    if (PlayerActor.contactSlope > LANDING_SLOPE) Change(STATE_HOP_LAND, PlayerActor.layerTimes[0], USUAL_BLEND);
    AirSteer();
}
