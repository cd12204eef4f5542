// The player's state table and its animations.

#include "player/handlers.h"
#include "player/player.h"
#include "records/animation_facts.h"
#include "records/walking_facts.h"

#include <iterator>

namespace {

AnimRecord Records[PLAYER_ANIMATION_COUNT];

constexpr int16_t WHOLE = ANIM_START_TIME;  // the next animation plays from its start
constexpr StateTransition STAY = {.unused = 0, .nextState = -1, .blendDuration = 0, .startTime = WHOLE};
constexpr StateTransition To(PlayerState state, int16_t blendDuration = 0) {
    return {.unused = 0, .nextState = static_cast<int16_t>(state), .blendDuration = blendDuration, .startTime = WHOLE};
}
constexpr StateTransition TO_HOLD_ARMS = To(STATE_HOLD_ARMS);
constexpr StateTransition TO_STAND = To(STATE_STAND);
constexpr StateTransition TO_STAND_SLOWLY = To(STATE_STAND, 120);
constexpr StateTransition TO_RUN_UP = To(STATE_RUN_UP);
constexpr StateTransition TO_RUN = To(STATE_RUN);
constexpr StateTransition TO_RUN_FROM_LEAP = To(STATE_RUN, 30);
constexpr StateTransition TO_LEAP_TAKE_OFF = To(STATE_LEAP_TAKE_OFF);
constexpr StateTransition TO_HOP_TAKE_OFF = To(STATE_HOP_TAKE_OFF);
constexpr StateTransition TO_READY = To(STATE_READY, 50);

struct StateRow {
    PlayerState state;
    PlayerAnimation animation;
    int16_t mode = PLAY_ONCE;
    const StateTransition* then = &STAY;  // where the state goes when its animation has ended
    float forward = 0.0f;                 // drive on the ground, per tick; negative: backwards
    float upImpulse = 0.0f;               // added once, on entering the state
    float slide;                          // share of the velocity kept after a contact
    uint16_t flags = 0;
    void (*handler)() = nullptr;
};

constexpr StateRow ROWS[] = {
    {.state = STATE_STAND, .animation = ANIMATION_IDLE, .slide = 0.1f, .handler = StandHandler},
    {.state = STATE_FOLD_ARMS,
     .animation = ANIMATION_FOLD_ARMS,
     .then = &TO_HOLD_ARMS,
     .slide = 0.1f,
     .handler = FidgetHandler},
    {.state = STATE_HOLD_ARMS, .animation = ANIMATION_HOLD_ARMS, .slide = 0.1f, .handler = FidgetHoldHandler},
    {.state = STATE_UNFOLD_ARMS,
     .animation = ANIMATION_UNFOLD_ARMS,
     .then = &TO_STAND,
     .slide = 0.1f,
     .handler = FidgetHandler},
    {.state = STATE_READY, .animation = ANIMATION_READY, .then = &TO_RUN_UP, .slide = 0.1f, .handler = RunHandler},
    {.state = STATE_RUN_UP,
     .animation = ANIMATION_RUN_UP,
     .then = &TO_RUN,
     .forward = 4.3f,
     .slide = 0.5f,
     .flags = STATE_CAN_STEP,
     .handler = RunHandler},
    {.state = STATE_RUN,
     .animation = ANIMATION_RUN,
     .mode = PLAY_LOOP,
     .forward = 4.3f,
     .slide = 0.5f,
     .flags = STATE_CAN_STEP,
     .handler = RunHandler},
    {.state = STATE_BACK,
     .animation = ANIMATION_BACK,
     .mode = PLAY_LOOP,
     .forward = -1.3f,
     .slide = 0.5f,
     .handler = BackHandler},
    {.state = STATE_HALT, .animation = ANIMATION_READY, .slide = 0.3f, .handler = HaltHandler},
    {.state = STATE_FIDGET_RIGHT,
     .animation = ANIMATION_FIDGET_RIGHT,
     .then = &TO_STAND_SLOWLY,
     .slide = 0.3f,
     .handler = StandHandler},
    {.state = STATE_FIDGET_LEFT,
     .animation = ANIMATION_FIDGET_LEFT,
     .then = &TO_STAND_SLOWLY,
     .slide = 0.3f,
     .handler = StandHandler},
    {.state = STATE_LEAP_CROUCH, .animation = ANIMATION_LEAP_CROUCH, .then = &TO_LEAP_TAKE_OFF, .slide = 0.5f},
    {.state = STATE_LEAP_TAKE_OFF,
     .animation = ANIMATION_LEAP_TAKE_OFF,
     .upImpulse = LEAP_IMPULSE,
     .slide = 0.5f,
     .handler = LeapTakeOffHandler},
    {.state = STATE_LEAP_AIR, .animation = ANIMATION_LEAP_AIR, .slide = 0.5f, .handler = LeapAirHandler},
    // Kept as it is: no state leads here: leaps land in the run.
    {.state = STATE_LEAP_LAND,
     .animation = ANIMATION_LEAP_LAND,
     .then = &TO_RUN_FROM_LEAP,
     .forward = 1.0f,
     .slide = 0.5f},
    {.state = STATE_HOP_CROUCH, .animation = ANIMATION_HOP_CROUCH, .then = &TO_HOP_TAKE_OFF, .slide = 0.5f},
    {.state = STATE_HOP_TAKE_OFF,
     .animation = ANIMATION_HOP_TAKE_OFF,
     .upImpulse = HOP_IMPULSE,
     .slide = 0.5f,
     .handler = HopTakeOffHandler},
    {.state = STATE_HOP_AIR, .animation = ANIMATION_HOP_AIR, .slide = 0.5f, .handler = HopAirHandler},
    {.state = STATE_HOP_LAND, .animation = ANIMATION_HOP_LAND, .then = &TO_READY, .slide = 0.5f},
    {.state = STATE_WALK,
     .animation = ANIMATION_WALK,
     .mode = PLAY_LOOP,
     .forward = 1.5f,
     .slide = 0.5f,
     .flags = STATE_CAN_STEP,
     .handler = WalkHandler},
};

constexpr bool EachStandsAtItsState() {
    for (size_t i = 0; i < std::size(ROWS); ++i) {
        if (ROWS[i].state != static_cast<int32_t>(i)) return false;
    }
    return std::size(ROWS) == PLAYER_STATE_COUNT;
}
static_assert(EachStandsAtItsState());

constexpr std::array<StateRecord, PLAYER_STATE_COUNT> RecordsOfRows() {
    std::array<StateRecord, PLAYER_STATE_COUNT> records{};
    for (const StateRow& row : ROWS) {
        records[static_cast<size_t>(row.state)] = {.flags = row.flags,
                                                   .transition = row.then,
                                                   .drive = {0.0f, GRAVITY, row.forward},
                                                   .impulse = {0.0f, row.upImpulse, 0.0f},
                                                   .slideFactor = row.slide,
                                                   .handler = row.handler,
                                                   .animations = {row.animation, -1, -1},
                                                   .playModes = {row.mode, 0, 0}};
    }
    return records;
}

}  // namespace

constinit std::array<StateRecord, PLAYER_STATE_COUNT> PlayerStates = RecordsOfRows();

AnimFileEntry PlayerAnimations[PLAYER_ANIMATION_COUNT + 1] = {
#define ANIMATION(NAME, FILE) {"game\\data\\anims\\" FILE, &Records[ANIMATION_##NAME]},
    PLAYER_ANIMATIONS(ANIMATION)
#undef ANIMATION
        {nullptr, nullptr},
};
