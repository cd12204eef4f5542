#include "character/actor.h"

#include "math/vectors.h"

#include <gtest/gtest.h>

namespace {

class ActorTest : public testing::Test {
protected:
    ~ActorTest() override { ActorCount = 0; }

    Actor actor{};
};

TEST_F(ActorTest, AddActorKeepsTheMotionAndAFullListTakesNoMore) {
    actor.angles = {0, 40, 0};
    actor.velocity = {1, 2, 3};
    actor.state = 13;
    actor.blendDuration = 75;
    actor.layerTimes[1] = 300;
    for (int i = 0; i < ACTOR_LIST_SIZE + 3; i++)
        AddActor(actor, nullptr, nullptr, -15, 507, 1599, nullptr);
    EXPECT_EQ(ActorCount, ACTOR_LIST_SIZE);
    EXPECT_EQ(actor.position.z, 1599.0f);
    EXPECT_EQ(actor.state, 0);
    EXPECT_EQ(actor.blendDuration, 0);
    EXPECT_EQ(actor.layerTimes[1], 10u);
    EXPECT_EQ(actor.angles.y, 40.0f);
    EXPECT_EQ(actor.velocity.z, 3.0f);
}

TEST_F(ActorTest, MeshFacesWhereTheActorMoves) {
    actor.position = {100, -20, 3};
    for (const float heading : {0.0f, 30.0f, 90.0f, 180.0f, -100.0f, 725.0f}) {
        actor.angles.y = heading;
        UpdateActorBase(actor);
        Matrix3 rotation;
        RotationFromAngles(0, heading, 0, rotation);
        RotateVectorT(0, 0, 1, rotation);  // the way a drive along the actor's own z moves it
        EXPECT_NEAR(-actor.base.r[6], RotatedVector.x, 1e-6) << heading;  // the mesh looks along its own -z
        EXPECT_NEAR(-actor.base.r[7], RotatedVector.y, 1e-6) << heading;
        EXPECT_NEAR(-actor.base.r[8], RotatedVector.z, 1e-6) << heading;
        EXPECT_EQ(actor.base.t[1], -20.0);
    }
}

}  // namespace
