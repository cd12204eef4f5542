// The player's movement against measured numbers: how it stands, runs, walks, jumps, climbs and slides at each frame
// length. A frame length is given in ticks of 16 ms.

#include "walker.h"

#include "platform/input.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr uint16_t RUN = CTL_UP;
constexpr uint16_t WALK = CTL_UP | CTL_SHIFT;

const Polygons FLAT = {Floor(0.0f, 0.0f, 30000.0f, 0.0f)};

float Hover() {
    return PlayerActor.position.y - FEET_BELOW_POSITION;
}

struct AtFrameLength : testing::TestWithParam<uint32_t> {
    uint32_t Ticks() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Movement, AtFrameLength, testing::Values(1u, 2u, 4u, 12u),
                         [](const auto& row) { return "ticks" + std::to_string(row.param); });

TEST_P(AtFrameLength, StandsStillJustAboveTheFloor) {
    Walker walker(FLAT, Ticks(), {0.0f, 115.0f, 0.0f});
    const float limit = Ticks() <= 2 ? 1.8f : 0.9f * static_cast<float>(Ticks());
    EXPECT_GE(Hover(), 0.0f);
    EXPECT_LE(Hover(), limit + 0.01f);
    const Vec3 rest = PlayerActor.position;
    for (int i = 0; i < 100; ++i) {
        walker.Frame(0);
        ASSERT_EQ(PlayerActor.position.y, rest.y);
        ASSERT_EQ(PlayerActor.position.x, rest.x);
        ASSERT_EQ(PlayerActor.onContact, 1);
    }
}

struct Gait {
    const char* name;
    uint16_t controls;
    float unitsPerTick;
};

TEST_P(AtFrameLength, SpeedOnTheGroundDependsOnTheGaitOnly) {
    for (const Gait& gait : {Gait{"run", RUN, 8.6f}, Gait{"walk", WALK, 3.0f}, Gait{"back", CTL_DOWN, -2.6f}}) {
        SCOPED_TRACE(gait.name);
        Walker walker(FLAT, Ticks(), {0.0f, 115.0f, 0.0f});
        walker.Frames(60, gait.controls);
        const float from = PlayerActor.position.z;
        walker.Frames(50, gait.controls);
        const float perTick = (PlayerActor.position.z - from) / (50.0f * static_cast<float>(Ticks()));
        EXPECT_NEAR(perTick, gait.unitsPerTick, std::fabs(gait.unitsPerTick) * 0.01f);
        EXPECT_NEAR(PlayerActor.position.x, 0.0f, 0.001f);
    }
}

TEST(Movement, StopsFromARunWithinTheMeasuredLength) {
    const struct {
        uint32_t ticks;
        float length;
    } rows[] = {{1, 11.95f}, {2, 23.9f}, {4, 48.7f}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ticks);
        Walker walker(FLAT, row.ticks, {0.0f, 115.0f, 0.0f});
        walker.Frames(60, RUN);
        const float from = PlayerActor.position.z;
        walker.Frames(60, 0);
        EXPECT_NEAR(PlayerActor.position.z - from, row.length, row.length * 0.05f);
    }
}

// Apex above the standing position and length to the first contact.
struct Flight {
    float apex;
    float length;
};

Flight Jump(Walker& walker, uint16_t hold, uint16_t steer) {
    const float ground = PlayerActor.position.y;
    Flight flight{};
    walker.Frame(static_cast<uint16_t>(CTL_SPACE | steer));
    bool flying = false;
    float takeOff = PlayerActor.position.z;
    for (int i = 0; i < 400; ++i) {
        walker.Frame(static_cast<uint16_t>(hold | steer));
        flight.apex = std::max(flight.apex, PlayerActor.position.y - ground);
        if (!flying && PlayerActor.position.y > ground + 2.0f) flying = true;
        if (!flying) takeOff = PlayerActor.position.z;
        if (flying && PlayerActor.onContact) break;
    }
    flight.length = PlayerActor.position.z - takeOff;
    return flight;
}

TEST(Movement, JumpsReachTheMeasuredHeights) {
    const struct {
        uint32_t ticks;
        float hopTapped[2], hopHeld[2], leapTapped[2], leapHeld[2];
    } rows[] = {
        {1, {81.0f, 93.6f}, {164.7f, 182.7f}, {292.5f, 315.9f}, {320.2f, 344.7f}},
        {2, {50.4f, 50.4f}, {153.0f, 153.0f}, {163.8f, 163.8f}, {192.8f, 192.8f}},
        {4, {28.8f, 28.8f}, {158.4f, 158.4f}, {88.2f, 88.2f}, {117.2f, 117.2f}},
        {12, {14.4f, 14.4f}, {252.0f, 252.0f}, {37.8f, 37.8f}, {68.4f, 68.4f}},
    };
    const auto expectApex = [](const char* name, float apex, const float(&range)[2]) {
        EXPECT_GE(apex, range[0] - 1.0f) << name;
        EXPECT_LE(apex, range[1] + 1.0f) << name;
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ticks);
        {
            Walker walker(FLAT, row.ticks, {0.0f, 115.0f, 0.0f});
            expectApex("hop tapped", Jump(walker, 0, 0).apex, row.hopTapped);
            walker.Settle();
            expectApex("hop held", Jump(walker, CTL_SPACE, 0).apex, row.hopHeld);
        }
        {
            Walker walker(FLAT, row.ticks, {0.0f, 115.0f, 0.0f});
            walker.Frames(60, RUN);
            expectApex("leap tapped", Jump(walker, 0, RUN).apex, row.leapTapped);
            walker.Frames(100, RUN);
            expectApex("leap held", Jump(walker, CTL_SPACE, RUN).apex, row.leapHeld);
        }
    }
}

TEST(Movement, LeapsCarryTheMeasuredDistance) {
    const struct {
        uint32_t ticks;
        float tapped[2], held[2];
    } rows[] = {{1, {414.0f, 441.0f}, {509.0f, 539.0f}},
                {2, {384.0f, 437.0f}, {498.0f, 555.0f}},
                {4, {429.0f, 494.0f}, {582.0f, 655.0f}}};
    const auto expectLength = [](float length, const float(&range)[2]) {
        EXPECT_GE(length, range[0] * 0.95f);
        EXPECT_LE(length, range[1] * 1.05f);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ticks);
        Walker walker(FLAT, row.ticks, {0.0f, 115.0f, 0.0f});
        walker.Frames(60, RUN);
        expectLength(Jump(walker, 0, RUN).length, row.tapped);
        walker.Frames(100, RUN);
        expectLength(Jump(walker, CTL_SPACE, RUN).length, row.held);
    }
}

// Runs at a block of the given height whose top is listed before its front; true when the player ends on top.
bool Climbs(uint32_t ticks, float height, uint16_t controls) {
    const Polygons block = {Floor(0.0f, 0.0f, 5000.0f, 0.0f), Floor(0.0f, 1500.0f, 1000.0f, height),
                            WallAcross(-1000.0f, 1000.0f, 500.0f, 0.0f, height)};
    Walker walker(block, ticks, {0.0f, 115.0f, 0.0f});
    for (int i = 0; i < 600 && PlayerActor.position.z < 900.0f; ++i)
        walker.Frame(controls);
    return PlayerActor.position.z >= 900.0f && Hover() >= height - 1.0f;
}

TEST(Movement, ClimbsLedgesUpToFiftyUnits) {
    for (const uint32_t ticks : {1u, 2u}) {
        SCOPED_TRACE(ticks);
        EXPECT_TRUE(Climbs(ticks, 40.0f, RUN));
        EXPECT_TRUE(Climbs(ticks, 49.0f, RUN));
        EXPECT_TRUE(Climbs(ticks, 49.0f, WALK));
        EXPECT_FALSE(Climbs(ticks, 53.0f, RUN));
        EXPECT_FALSE(Climbs(ticks, 53.0f, WALK));
    }
    EXPECT_TRUE(Climbs(4, 48.0f, RUN));
    EXPECT_FALSE(Climbs(4, 53.0f, RUN));
}

TEST_P(AtFrameLength, StopsAtAWallWithoutJitter) {
    const Polygons wall = {Floor(0.0f, 0.0f, 5000.0f, 0.0f), WallAcross(-1000.0f, 1000.0f, 800.0f, 0.0f, 600.0f)};
    Walker walker(wall, Ticks(), {0.0f, 115.0f, 0.0f});
    walker.Frames(300, RUN);
    const float gap = 800.0f - PlayerActor.position.z;
    EXPECT_GE(gap, 16.0f);
    EXPECT_LE(gap, 16.2f + 4.4f * static_cast<float>(Ticks()));
    const float rest = PlayerActor.position.z;
    for (int i = 0; i < 50; ++i) {
        walker.Frame(RUN);
        ASSERT_NEAR(PlayerActor.position.z, rest, 0.01f);
    }
}

// A plane rising towards +z at the given angle's tangent, through the origin.
Polygons Slope(float rise) {
    constexpr float HALF = 20000.0f;
    return {{{-HALF, -HALF * rise, -HALF},
             {HALF, -HALF * rise, -HALF},
             {HALF, HALF * rise, HALF},
             {-HALF, HALF * rise, HALF}}};
}

TEST(Movement, HoldsOnGentleSlopesAndCreepsOnSteeperOnes) {
    const auto creep = [](uint32_t ticks, float rise) {
        Walker walker(Slope(rise), ticks, {0.0f, 115.0f, 0.0f});
        const float from = PlayerActor.position.z;
        walker.Frames(60, 0);
        return std::fabs(PlayerActor.position.z - from);
    };
    EXPECT_LT(creep(1, 0.2126f), 0.01f);  // 12 degrees
    EXPECT_GT(creep(1, 0.2867f), 1.0f);   // 16 degrees
    EXPECT_LT(creep(4, 0.0875f), 0.01f);  // 5 degrees
    EXPECT_GT(creep(4, 0.1763f), 1.0f);   // 10 degrees
}

TEST(Movement, RunsUpSlopesAtTheMeasuredSpeeds) {
    const struct {
        float rise, perTick;
    } rows[] = {{0.1763f, 8.16f}, {0.3640f, 7.47f}, {0.5774f, 6.55f}, {1.0f, 4.81f}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rise);
        Walker walker(Slope(row.rise), 1, {0.0f, 130.0f, 0.0f});
        walker.Frames(80, RUN);
        const Vec3 from = PlayerActor.position;
        walker.Frames(100, RUN);
        const float rise = PlayerActor.position.y - from.y;
        const float run = PlayerActor.position.z - from.z;
        EXPECT_NEAR(std::sqrt(rise * rise + run * run) / 100.0f, row.perTick, row.perTick * 0.02f);
    }
}

TEST(Movement, RunsOffALedgeInTheRunStateWithoutTurning) {
    const Polygons ledge = {Floor(0.0f, 0.0f, 500.0f, 200.0f), Floor(0.0f, 0.0f, 5000.0f, 0.0f)};
    Walker walker(ledge, 1, {0.0f, 315.0f, 0.0f});
    while (PlayerActor.onContact || PlayerActor.position.z < 400.0f)
        walker.Frame(RUN);
    const float edge = PlayerActor.position.z;
    while (!PlayerActor.onContact) {
        walker.Frame(RUN | CTL_LEFT);
        ASSERT_EQ(PlayerActor.state, STATE_RUN);
        ASSERT_LT(PlayerActor.angles.y, 2.5f);
    }
    EXPECT_NEAR(PlayerActor.position.z - edge, 172.0f, 172.0f * 0.08f);
}

}  // namespace
