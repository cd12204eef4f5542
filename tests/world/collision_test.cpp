#include "world/collision.h"

#include "platform/timer.h"
#include "records/character_records.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/bsp.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// An actor in one leaf of the given polygons, contacts in their order.
class Collision : public testing::Test {
protected:
    void Build(const std::vector<Corners>& polygons) {
        world_.AddLeaf(polygons);
        Prepare(world_);
    }

    void Prepare(TinyWorld& world) {
        world.Publish();
        ComputePolyFrames();
        GenerateNodeRadii();
        FrameTicks = 1;
        state_.slideFactor = 0.5f;
        state_.flags = STATE_CAN_STEP;
        actor_.states = &state_;
    }

    static Corners Floor(float height, float half = 500.0f) { return FacingSquare({0, height, 0}, {0, 1, 0}, half); }
    static Corners Wall(float z, float top) { return {{-500, 0, z}, {500, 0, z}, {500, top, z}, {-500, top, z}}; }

    void Move(Vec3 position, Vec3 velocity) {
        actor_.position = position;
        actor_.velocity = velocity;
        MoveAgainstWorld(actor_);
    }

    TinyWorld world_;
    StateRecord state_{};
    Actor actor_{};
};

TEST_F(Collision, AnEdgeTooShortToHaveANormalHoldsNothingOut) {
    std::vector<Corners> polygons;
    for (const float length : {0.0f, 2e-24f, -2e-24f})  // a normal of 0 / 0, and infinite ones of both directions
        polygons.push_back({{100, -100, 0}, {0, 100, -100}, {0, 0, 0}, {length, -3 * length, 2 * length}});
    Build(polygons);
    EXPECT_EQ(WorldSphereContacts(40, -10, -30, 50), 3);
}

TEST_F(Collision, OnlyMovesTowardsTheSolidStop) {
    Build({Floor(0.0f)});
    Move({0, 112, 0}, {0, -20, 0});
    EXPECT_EQ(actor_.onContact, 1);
    EXPECT_EQ(actor_.contactSlope, 1.0f);
    EXPECT_EQ(actor_.position.y, 112.0f);  // stopped at the start of the move
    EXPECT_EQ(actor_.velocity.y, 0.0f);
    Move({0, 112, 0}, {0, 20, 0});
    EXPECT_EQ(actor_.onContact, 0);
    EXPECT_EQ(actor_.ticksSinceContact, 1);
    EXPECT_EQ(actor_.position.y, 132.0f);
    Move({0, 70, 0}, {0, 5, 0});  // from below it is passed through
    EXPECT_EQ(actor_.onContact, 0);
    Move({0, 108, 0}, {20, -0.09f, 0});  // nearly along the polygon
    EXPECT_EQ(actor_.onContact, 0);
    Move({0, 108, 0}, {20, -0.11f, 0});
    EXPECT_EQ(actor_.onContact, 1);
}

TEST_F(Collision, TheSlopeIsThatOfTheLastPolygonHit) {
    Build({Floor(0.0f), Wall(100.0f, 500.0f)});
    state_.flags = 0;
    Move({0, 105, 80}, {0, -5, 10});
    EXPECT_NEAR(actor_.contactSlope, 0.0f, 1e-6f);
}

// The node that the query's centre is in front of gives its polygons first; touched polygons keep that order.
TEST_F(Collision, ContactsComeFromTheNearSideOfEachNodeFirst) {
    const int16_t left = world_.AddLeaf({Floor(0.0f)});
    const int16_t right = world_.AddLeaf({Floor(1.0f), Floor(2.0f)});
    world_.AddNode({1, 0, 0, 0}, right, left);
    Prepare(world_);
    ASSERT_EQ(WorldSphereContacts(-5, 10, 0, 50), 3);
    EXPECT_EQ(std::vector<int32_t>(ContactList, ContactList + 4), (std::vector<int32_t>{0, 1, 2, -1}));
    ASSERT_EQ(WorldSphereContacts(5, 10, 0, 50), 3);
    EXPECT_EQ(std::vector<int32_t>(ContactList, ContactList + 4), (std::vector<int32_t>{1, 2, 0, -1}));
}

TEST_F(Collision, TheSquareOfTheRadiusWrapsAtThirtyTwoBits) {
    Build({Floor(0.0f, 100.0f)});  // 180 units above it the node needs the radius, the leaf root 2 of its own 141
    EXPECT_EQ(WorldSphereContacts(0, 180, 0, 180), 1);
    EXPECT_EQ(WorldSphereContacts(0, 180, 0, 65536), 0);
}

TEST_F(Collision, AMoveGathersHalfItsLengthAnd144Around) {
    Build({Floor(0.0f)});
    for (const auto& [distance, contacts] : {std::pair{149.0f, 1}, {150.0f, 0}}) {
        WorldGeometry.nodes[0].centre = {distance, 14, 0};
        WorldGeometry.nodes[0].radiusRoot2 = 0;
        Move({0, 112, 0}, {0, -10, 0});
        EXPECT_EQ(actor_.onContact, contacts) << distance;
    }
}

TEST_F(Collision, ALedgeLiftsByItsHeightAndFourteenMore) {
    const Corners side = {{20, 0, 500}, {20, 0, -500}, {20, 1000, -500}, {20, 1000, 500}};
    const struct {
        const char* what;
        std::vector<Corners> polygons;
        uint8_t flags;
        float lowestLift, highestLift;
    } rows[] = {{"low enough", {Wall(100, 49)}, STATE_CAN_STEP, 62.99f, 63.01f},
                {"too high", {Wall(100, 50)}, STATE_CAN_STEP, 0, 0},
                {"the state cannot step", {Wall(100, 40)}, 0, 0, 0},
                // Kept on purpose: the lift adds the height looked at last, also when it was not accepted.
                {"a tall wall after a ledge", {Wall(100, 40), side}, STATE_CAN_STEP, 1000, 2000}};
    for (const auto& row : rows) {
        TinyWorld world;
        world.AddLeaf(row.polygons);
        Prepare(world);
        state_.flags = row.flags;
        Move({2, 109, 80}, {row.polygons.size() > 1 ? 10.0f : 0.0f, 0, 10});
        EXPECT_GE(actor_.position.y - 109, row.lowestLift) << row.what;
        EXPECT_LE(actor_.position.y - 109, row.highestLift) << row.what;
        const float kept = row.polygons.size() > 1 ? 5.0f : 0.0f;  // the velocity into the last polygon hit is lost
        EXPECT_NEAR(actor_.velocity.z, kept, 1e-4f) << row.what;
    }
}

// Between two walls that meet at 30 degrees, the first pass changes nothing and each further one keeps the cosine
// of 30.
TEST_F(Collision, AWedgeEndsAfterElevenPasses) {
    const float c = std::cos(3.14159265f / 6), s = 0.5f;
    const Corners along = {{0, 0, -500}, {0, 0, 500}, {0, 500, 500}, {0, 500, -500}};
    const Corners across = {
        {500 * s, 0, 500 * c}, {-500 * s, 0, -500 * c}, {-500 * s, 500, -500 * c}, {500 * s, 500, 500 * c}};
    Build({along, across});
    state_.flags = 0;
    state_.slideFactor = 1.0f;
    Move({10, 200, 30}, {-1, 0, -40});
    EXPECT_NEAR(std::hypot(actor_.velocity.x, actor_.velocity.z), 40 * std::pow(c, 10.0f), 0.01f);
    EXPECT_EQ(actor_.position.x, 10.0f);
}

TEST_F(Collision, MoreThanTwoHundredContactsAreFatal) {
    Build(std::vector<Corners>(201, Floor(0.0f)));
    const FatalThrown fatal = CatchFatal([] { WorldSphereContacts(0, 10, 0, 50); });
    EXPECT_EQ(fatal.code, 1);
    EXPECT_EQ(fatal.text, "Opps too many faces.\n");
    EXPECT_TRUE(fatal.path.ends_with(".bgm")) << "the world is to blame";
    WorldGeometry.leaves[0].polygonCount = 200;
    EXPECT_EQ(WorldSphereContacts(0, 10, 0, 50), 200);
}

}  // namespace
