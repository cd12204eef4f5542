// Which keys lead from which state to which, with the player standing on the ground unless a row says otherwise.

#include "walker.h"

#include "character/animation.h"
#include "platform/input.h"
#include "platform/timer.h"

#include <gtest/gtest.h>

namespace {

struct Row {
    const char* rule;
    int32_t state;
    uint16_t controls;
    int32_t ticks;
    int32_t random;
    int32_t next;
    int32_t blend;
};

class States : public testing::Test {
protected:
    // One AdvanceActor from the given state.
    void Step(int32_t state, uint16_t controls, int32_t ticks = 0, int32_t random = 0, int16_t onContact = 1) {
        FrameTicks = 1;
        Controls = controls;
        PlayerActor.state = state;
        PlayerActor.layerTimes[0] = 20;
        PlayerActor.blendDuration = 0;
        PlayerActor.ticksInState = ticks;
        PlayerActor.randomWord = random;
        PlayerActor.onContact = onContact;
        PlayerActor.localMove = {};
        AdvanceActor(PlayerActor);
    }

    Walker walker_{{Floor(0.0f, 0.0f, 1000.0f, 0.0f)}, 1, {0.0f, 115.0f, 0.0f}};
};

TEST_F(States, KeysAndTimeChangeTheStateAsTheTableSays) {
    const Row rows[] = {
        {"up runs", STATE_STAND, CTL_UP, 0, 0, STATE_READY, 75},
        {"up with shift walks", STATE_STAND, CTL_UP | CTL_SHIFT, 0, 0, STATE_WALK, 75},
        {"down backs", STATE_STAND, CTL_DOWN, 0, 0, STATE_BACK, 75},
        {"of up and down the later test wins", STATE_STAND, CTL_UP | CTL_DOWN, 0, 0, STATE_BACK, 75},
        {"patience holds to 1500", STATE_STAND, 0, 1500 - 0x3FF, 0x3FF, STATE_STAND, 0},
        {"odd fidgets fold the arms", STATE_STAND, 0, 1501 - 0x3FF, 0x3FF, STATE_FOLD_ARMS, 0},
        {"even ones look about", STATE_STAND, 0, 1501, 0x400, STATE_HALT, 0},
        {"arms are held for 400 ticks", STATE_HOLD_ARMS, 0, 400, 0, STATE_HOLD_ARMS, 0},
        {"and then unfolded", STATE_HOLD_ARMS, 0, 401, 0, STATE_UNFOLD_ARMS, 0},
        {"folding is left for a run", STATE_FOLD_ARMS, CTL_UP, 0, 0, STATE_READY, 75},
        {"halting turns right when odd", STATE_HALT, 0, 101, 1, STATE_FIDGET_RIGHT, 75},
        {"and left when even", STATE_HALT, 0, 101, 0, STATE_FIDGET_LEFT, 75},
        {"a halted runner starts at the run-up", STATE_HALT, CTL_UP, 0, 0, STATE_RUN_UP, 75},
        {"a run without up halts", STATE_RUN, 0, 0, 0, STATE_HALT, 75},
        {"shift slows the run to a walk", STATE_RUN, CTL_UP | CTL_SHIFT, 0, 0, STATE_WALK, 75},
        {"shift alone walks too", STATE_RUN, CTL_SHIFT, 0, 0, STATE_WALK, 75},
        {"a walk without shift runs", STATE_WALK, CTL_UP, 0, 0, STATE_RUN, 75},
        {"backing ends in standing", STATE_BACK, 0, 0, 0, STATE_STAND, 75},
        {"space hops from standing", STATE_STAND, CTL_SPACE, 0, 0, STATE_HOP_CROUCH, 10},
        {"space and up hop as well", STATE_STAND, CTL_SPACE | CTL_UP, 0, 0, STATE_HOP_CROUCH, 10},
    };
    for (const Row& row : rows) {
        PlayerActor.velocity = {};
        Step(row.state, row.controls, row.ticks, row.random);
        EXPECT_EQ(PlayerActor.state, row.next) << row.rule;
        EXPECT_EQ(PlayerActor.blendDuration, row.blend) << row.rule;
    }
}

TEST_F(States, ForwardSpeedDecidesBetweenHopAndLeap) {
    PlayerActor.velocity = {0, 0, 2.0f};
    Step(STATE_RUN, CTL_UP | CTL_SPACE);
    EXPECT_EQ(PlayerActor.state, STATE_HOP_CROUCH);
    EXPECT_EQ(PlayerStates[STATE_HOP_TAKE_OFF].impulse.z, 1.0f);
    PlayerActor.velocity = {0, 0, 4.0f};
    Step(STATE_RUN, CTL_UP | CTL_SPACE);
    EXPECT_EQ(PlayerActor.state, STATE_LEAP_CROUCH);
    EXPECT_EQ(PlayerStates[STATE_LEAP_TAKE_OFF].impulse.z, 5.0f);
    EXPECT_EQ(JumpHeld, 1);
    EXPECT_NEAR(PlayerActor.velocity.z, 4.3f, 1e-5f);  // zeroed, then the run's drive of this frame
}

TEST_F(States, NothingJumpsOrTurnsInTheAir) {
    const float heading = PlayerActor.angles.y;
    Step(STATE_RUN, CTL_UP | CTL_SPACE | CTL_LEFT, 0, 0, 0);
    EXPECT_EQ(PlayerActor.state, STATE_RUN);
    EXPECT_EQ(PlayerActor.angles.y, heading);
    Step(STATE_RUN, CTL_UP | CTL_LEFT);
    EXPECT_EQ(PlayerActor.angles.y, heading + 2.0f);
    Step(STATE_RUN, CTL_UP | CTL_LEFT | CTL_RIGHT);
    EXPECT_EQ(PlayerActor.angles.y, heading + 2.0f);
}

TEST_F(States, AHeldJumpPushesOnceMoreAndLandingNeedsFlatGround) {
    PlayerActor.velocity = {0, 10.0f, 0};
    JumpHeld = 1;
    Step(STATE_LEAP_TAKE_OFF, CTL_SPACE, 0, 0, 0);
    EXPECT_EQ(PlayerActor.state, STATE_LEAP_AIR);
    EXPECT_NEAR(PlayerActor.velocity.y, 10.0f - 0.9f + 1.1f, 1e-4f);
    EXPECT_NEAR(PlayerActor.velocity.z, 1.39f, 1e-4f);
    JumpHeld = 1;
    Step(STATE_HOP_TAKE_OFF, 0, 0, 0, 0);
    EXPECT_EQ(JumpHeld, 0);
    PlayerActor.contactSlope = 0.7f;
    Step(STATE_LEAP_AIR, 0, 0, 0, 0);
    EXPECT_EQ(PlayerActor.state, STATE_LEAP_AIR);
    PlayerActor.contactSlope = 0.71f;
    Step(STATE_LEAP_AIR, 0, 0, 0, 0);
    EXPECT_EQ(PlayerActor.state, STATE_RUN);
    Step(STATE_HOP_AIR, 0, 0, 0, 0);
    EXPECT_EQ(PlayerActor.state, STATE_HOP_LAND);
    EXPECT_EQ(PlayerActor.layerTimes[0], 25u);  // goes on from the animation time of the air
}

}  // namespace
