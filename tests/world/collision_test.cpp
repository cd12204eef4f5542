#include "world/collision.h"

#include "platform/timer.h"
#include "records/character_records.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/bsp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

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

TEST_F(Collision, ASphereTouchesPolygonsWithinItsRadiusAndTheirGrownOutline) {
    Build({Floor(0.0f, 100.0f)});
    const struct {
        int32_t x, y, radius;
        bool touches;
    } rows[] = {{0, 50, 50, true}, {0, 51, 50, false}, {0, -50, 50, true}, {148, 10, 50, true}, {155, 10, 50, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(WorldSphereContacts(row.x, row.y, 0, row.radius), row.touches ? 1 : 0) << row.x << " " << row.y;
        EXPECT_EQ(ContactList[row.touches ? 1 : 0], -1);
    }
}

TEST_F(Collision, AnEdgeTooShortToHaveANormalHoldsNothingOut) {
    std::vector<Corners> polygons;
    for (const float length : {0.0f, 2e-24f, -2e-24f})  // a normal of 0 / 0, and infinite ones of both directions
        polygons.push_back({{100, -100, 0}, {0, 100, -100}, {0, 0, 0}, {length, -3 * length, 2 * length}});
    Build(polygons);
    EXPECT_EQ(WorldSphereContacts(40, -10, -30, 50), 3);
}

TEST_F(Collision, AMoveShorterThanOneUnitChangesNothing) {
    Build({Floor(0.0f)});
    actor_.ticksSinceContact = 7;
    actor_.onContact = 1;
    Move({0, 109, 0}, {0, -0.9f, 0});
    EXPECT_EQ(actor_.position.y, 109.0f);
    EXPECT_EQ(actor_.velocity.y, -0.9f);
    EXPECT_EQ(actor_.ticksSinceContact, 7);
    EXPECT_EQ(actor_.onContact, 1);
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
}

TEST_F(Collision, ASlideKeepsWhatRunsAlongTheWallAndFrictionScalesIt) {
    Build({Wall(100.0f, 500.0f)});
    state_.flags = 0;
    Move({0, 200, 80}, {10, 0, 10});
    EXPECT_EQ(actor_.onContact, 1);
    EXPECT_NEAR(actor_.position.x, 10.0f, 1e-4f);
    EXPECT_NEAR(actor_.position.z, 80.0f, 1e-4f);
    EXPECT_NEAR(actor_.velocity.x, 5.0f, 1e-4f);
    EXPECT_NEAR(actor_.velocity.z, 0.0f, 1e-4f);
    EXPECT_NEAR(actor_.contactSlope, 0.0f, 1e-6f);
}

TEST_F(Collision, ALedgeLiftsByItsHeightAndFourteenMore) {
    const Corners side = {{20, 0, 500}, {20, 0, -500}, {20, 1000, -500}, {20, 1000, 500}};
    const struct {
        const char* what;
        std::vector<Corners> polygons;
        uint8_t flags;
        float lowestLift, highestLift;
    } rows[] = {{"low enough", {Wall(100, 40)}, STATE_CAN_STEP, 53.99f, 54.01f},
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
    }
}

TEST_F(Collision, APocketEndsAfterElevenPasses) {
    const Corners left = {{-10, 0, 500}, {-10, 0, 0}, {-10, 500, 0}, {-10, 500, 500}};
    const Corners right = {{10, 0, 0}, {10, 0, 500}, {10, 500, 500}, {10, 500, 0}};
    Build({left, right, Floor(0.0f)});
    state_.flags = 0;
    Move({0, 105, 200}, {3, -40, 3});
    EXPECT_LT(std::max({std::abs(actor_.position.x), std::abs(actor_.position.y - 105.0f)}), 45.0f);
    EXPECT_EQ(actor_.onContact, 1);
}

TEST_F(Collision, MoreThanTwoHundredContactsAreFatal) {
    Build(std::vector<Corners>(201, Floor(0.0f)));
    try {
        WorldSphereContacts(0, 10, 0, 50);
        ADD_FAILURE() << "accepted";
    } catch (const FatalThrown& fatal) {
        EXPECT_TRUE(fatal.path.ends_with(".bgm")) << "the world is to blame";
    }
    WorldGeometry.leaves[0].polygonCount = 200;
    EXPECT_EQ(WorldSphereContacts(0, 10, 0, 50), 200);
}

}  // namespace
