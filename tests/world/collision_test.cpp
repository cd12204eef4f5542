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
        world_.Publish();
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

TEST_F(Collision, AMoveShorterThanOneUnitChangesNothing) {
    Build({Floor(0.0f)});
    actor_.ticksSinceContact = 7;
    actor_.onContact = 1;
    actor_.contactSlope = 0.25f;
    Move({0, 109, 0}, {0, -0.9f, 0});
    EXPECT_EQ(actor_.position.y, 109.0f);
    EXPECT_EQ(actor_.velocity.y, -0.9f);
    EXPECT_EQ(actor_.ticksSinceContact, 7);
    EXPECT_EQ(actor_.onContact, 1);
    EXPECT_EQ(actor_.contactSlope, 0.25f);
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

// The height that one frame's lift adds over a ledge, standing at y = 109 before a wall whose top is given.
class Ledge : public Collision {
protected:
    float Lift(const std::vector<Corners>& polygons) {
        Build(polygons);
        Move({0, 109, 80}, {0, 0, 10});
        return actor_.position.y - 109.0f;
    }
};

TEST_F(Ledge, ALowOneLiftsByItsHeightAndFourteenMore) {
    EXPECT_NEAR(Lift({Wall(100.0f, 40.0f)}), 54.0f, 1e-3f);
    EXPECT_NEAR(actor_.velocity.z, 0.0f, 1e-4f);  // the along-normal part goes in the end
}

TEST_F(Ledge, OneOfFiftyIsTooHigh) {
    EXPECT_NEAR(Lift({Wall(100.0f, 50.0f)}), 0.0f, 1e-3f);
}

TEST_F(Ledge, AStateThatCannotStepStops) {
    Build({Wall(100.0f, 40.0f)});
    state_.flags = 0;
    Move({0, 109, 80}, {0, 0, 10});
    EXPECT_EQ(actor_.position.y, 109.0f);
}

TEST_F(Ledge, ATallWallTouchedAfterALedgeAddsItsOwnHeight) {
    // Kept on purpose: the lift adds the height looked at last, also when it was not accepted.
    const Corners side = {{20, 0, 500}, {20, 0, -500}, {20, 1000, -500}, {20, 1000, 500}};
    Build({Wall(100.0f, 40.0f), side});
    const bool facesLeft = WorldGeometry.planes[WorldGeometry.polygons[1].plane].nx > 0.0f;
    ASSERT_TRUE(facesLeft);
    Move({2, 109, 80}, {10, 0, 10});
    EXPECT_GT(actor_.position.y - 109.0f, 1000.0f);
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

TEST_F(Collision, TwoHundredContactsAreTheLimit) {
    Build(std::vector<Corners>(200, Floor(0.0f)));
    EXPECT_EQ(WorldSphereContacts(0, 10, 0, 50), 200);
}

TEST_F(Collision, OneContactMoreIsFatal) {
    Build(std::vector<Corners>(201, Floor(0.0f)));
    try {
        WorldSphereContacts(0, 10, 0, 50);
        FAIL();
    } catch (const FatalThrown& fatal) {
        EXPECT_EQ(fatal.code, 1);
        EXPECT_EQ(fatal.text, "Opps too many faces.\n");
    }
}

}  // namespace
