// The player's state table and its animations.

#include "player/handlers.h"
#include "player/player.h"

namespace {

constexpr int PLAYER_ANIMATION_COUNT = 23;
AnimRecord Records[PLAYER_ANIMATION_COUNT];

constexpr StateTransition STAY = {0, -1, 0, 10};
constexpr StateTransition TO_HOLD_ARMS = {0, STATE_HOLD_ARMS, 0, 10};
constexpr StateTransition TO_STAND = {0, STATE_STAND, 0, 10};
constexpr StateTransition TO_STAND_SLOWLY = {0, STATE_STAND, 120, 10};
constexpr StateTransition TO_RUN_UP = {0, STATE_RUN_UP, 0, 10};
constexpr StateTransition TO_RUN = {0, STATE_RUN, 0, 10};
constexpr StateTransition TO_RUN_FROM_LEAP = {0, STATE_RUN, 30, 10};
constexpr StateTransition TO_LEAP_TAKE_OFF = {0, STATE_LEAP_TAKE_OFF, 0, 10};
constexpr StateTransition TO_HOP_TAKE_OFF = {0, STATE_HOP_TAKE_OFF, 0, 10};
constexpr StateTransition TO_READY = {0, STATE_READY, 50, 10};

constexpr float GRAVITY = -0.9f;  // per tick, in every state, in the air and on the ground

constexpr StateRecord State(int16_t animation, int16_t mode, const StateTransition& transition, float forward,
                            float upImpulse, float slide, uint16_t flags, void (*handler)()) {
    return {flags, &transition, {0.0f, GRAVITY, forward}, {0.0f, upImpulse, 0.0f},
            slide, handler,     {animation, -1, -1},      {mode, 0, 0}};
}

}  // namespace

StateRecord PlayerStates[PLAYER_STATE_COUNT] = {
    State(4, PLAY_ONCE, STAY, 0.0f, 0.0f, 0.1f, 0, StandHandler),
    State(3, PLAY_ONCE, TO_HOLD_ARMS, 0.0f, 0.0f, 0.1f, 0, FidgetHandler),
    State(1, PLAY_ONCE, STAY, 0.0f, 0.0f, 0.1f, 0, FidgetHoldHandler),
    State(2, PLAY_ONCE, TO_STAND, 0.0f, 0.0f, 0.1f, 0, FidgetHandler),
    State(6, PLAY_ONCE, TO_RUN_UP, 0.0f, 0.0f, 0.1f, 0, RunHandler),
    State(7, PLAY_ONCE, TO_RUN, 4.3f, 0.0f, 0.5f, STATE_CAN_STEP, RunHandler),
    State(10, PLAY_LOOP, STAY, 4.3f, 0.0f, 0.5f, STATE_CAN_STEP, RunHandler),
    State(0, PLAY_LOOP, STAY, -1.3f, 0.0f, 0.5f, 0, BackHandler),
    State(6, PLAY_ONCE, STAY, 0.0f, 0.0f, 0.3f, 0, HaltHandler),
    State(9, PLAY_ONCE, TO_STAND_SLOWLY, 0.0f, 0.0f, 0.3f, 0, StandHandler),
    State(8, PLAY_ONCE, TO_STAND_SLOWLY, 0.0f, 0.0f, 0.3f, 0, StandHandler),
    State(15, PLAY_ONCE, TO_LEAP_TAKE_OFF, 0.0f, 0.0f, 0.5f, 0, nullptr),
    State(16, PLAY_ONCE, STAY, 0.0f, 23.4f, 0.5f, 0, LeapTakeOffHandler),
    State(17, PLAY_ONCE, STAY, 0.0f, 0.0f, 0.5f, 0, LeapAirHandler),
    State(18, PLAY_ONCE, TO_RUN_FROM_LEAP, 1.0f, 0.0f, 0.5f, 0, nullptr),
    State(19, PLAY_ONCE, TO_HOP_TAKE_OFF, 0.0f, 0.0f, 0.5f, 0, nullptr),
    State(20, PLAY_ONCE, STAY, 0.0f, 12.6f, 0.5f, 0, HopTakeOffHandler),
    State(21, PLAY_ONCE, STAY, 0.0f, 0.0f, 0.5f, 0, HopAirHandler),
    State(22, PLAY_ONCE, TO_READY, 0.0f, 0.0f, 0.5f, 0, nullptr),
    State(13, PLAY_LOOP, STAY, 1.5f, 0.0f, 0.5f, STATE_CAN_STEP, WalkHandler),
};

// The two jumps use one set each of the same four files.
AnimFileEntry PlayerAnimations[PLAYER_ANIMATION_COUNT + 1] = {
    {"game\\data\\anims\\zeroback.anm", &Records[0]},  {"game\\data\\anims\\zerofol2.anm", &Records[1]},
    {"game\\data\\anims\\zerofol3.anm", &Records[2]},  {"game\\data\\anims\\zerofold.anm", &Records[3]},
    {"game\\data\\anims\\zeroidle.anm", &Records[4]},  {"game\\data\\anims\\zerorebo.anm", &Records[5]},
    {"game\\data\\anims\\zeroredy.anm", &Records[6]},  {"game\\data\\anims\\zeroreru.anm", &Records[7]},
    {"game\\data\\anims\\zeroretl.anm", &Records[8]},  {"game\\data\\anims\\zeroretr.anm", &Records[9]},
    {"game\\data\\anims\\zerorun.anm", &Records[10]},  {"game\\data\\anims\\zeroruwl.anm", &Records[11]},
    {"game\\data\\anims\\zerostan.anm", &Records[12]}, {"game\\data\\anims\\zerowalk.anm", &Records[13]},
    {"game\\data\\anims\\zerowbre.anm", &Records[14]}, {"game\\data\\anims\\zerojum1.anm", &Records[15]},
    {"game\\data\\anims\\zerojum2.anm", &Records[16]}, {"game\\data\\anims\\zerojum3.anm", &Records[17]},
    {"game\\data\\anims\\zerojum4.anm", &Records[18]}, {"game\\data\\anims\\zerojum1.anm", &Records[19]},
    {"game\\data\\anims\\zerojum2.anm", &Records[20]}, {"game\\data\\anims\\zerojum3.anm", &Records[21]},
    {"game\\data\\anims\\zerojum4.anm", &Records[22]}, {nullptr, nullptr},
};
