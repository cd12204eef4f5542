// Cases that few levels have a place for: slopes that are just too steep to land on, keys that are pressed in a fall.
#include "player/handlers.h"

#include "character/character_tables.h"
#include "platform/input.h"
#include "platform/timer.h"
#include "player/player.h"

#include <gtest/gtest.h>

namespace {

class Handlers : public testing::Test {
protected:
    void SetUp() override {
        PlayerActor = {};
        PlayerActor.states = PlayerStates.data();
        FrameTicks = 1;
    }
    void TearDown() override { SetUp(); }
};

TEST_F(Handlers, AJumpEndsOnContactsThatAreFlatEnough) {
    const struct {
        PlayerState air, landed;
        void (*handler)();
    } rows[] = {{STATE_LEAP_AIR, STATE_RUN, LeapAirHandler}, {STATE_HOP_AIR, STATE_HOP_LAND, HopAirHandler}};
    for (const auto& row : rows) {
        for (const auto& [slope, next] : {std::pair{0.7f, row.air}, {0.71f, row.landed}}) {
            PlayerActor.state = row.air;
            PlayerActor.contactSlope = slope;
            row.handler();
            EXPECT_EQ(PlayerActor.state, next) << slope;
        }
    }
}

TEST_F(Handlers, NobodyTurnsOrJumpsInAFall) {
    PlayerActor.state = STATE_RUN;
    Controls = CTL_UP | CTL_SPACE | CTL_LEFT;
    RunHandler();
    EXPECT_EQ(PlayerActor.state, STATE_RUN);
    EXPECT_EQ(PlayerActor.angles.y, 0.0f);
    Controls = 0;
}

}  // namespace
