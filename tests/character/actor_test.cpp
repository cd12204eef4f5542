#include "character/actor.h"

#include "math/vectors.h"

#include <gtest/gtest.h>

namespace {

class ActorTest : public testing::Test {
protected:
    ~ActorTest() override { ActorCount = 0; }

    Actor actor{};
};

TEST_F(ActorTest, AddActorSetsItsFieldsAndKeepsTheMotion) {
    MeshRecord mesh{};
    StateRecord states[1]{};
    AnimFileEntry animations[1]{};
    actor.angles = {0, 40, 0};
    actor.velocity = {1, 2, 3};
    actor.state = 13;
    actor.blendDuration = 75;
    actor.layerTimes[1] = 300;
    AddActor(actor, &mesh, states, -15, 507, 1599, animations);
    EXPECT_EQ(actor.active, 1);
    EXPECT_EQ(actor.position.x, -15.0f);
    EXPECT_EQ(actor.position.z, 1599.0f);
    EXPECT_TRUE(actor.mesh == &mesh && actor.states == states && actor.animations == animations);
    EXPECT_EQ(actor.state, 0);
    EXPECT_EQ(actor.blendDuration, 0);
    for (const uint32_t time : actor.layerTimes)
        EXPECT_EQ(time, 10u);
    EXPECT_EQ(actor.angles.y, 40.0f);
    EXPECT_EQ(actor.velocity.z, 3.0f);
    EXPECT_EQ(ActorList[0], &actor);
    EXPECT_EQ(ActorCount, 1);
}

TEST_F(ActorTest, AFullListTakesNoMore) {
    for (int i = 0; i < ACTOR_LIST_SIZE + 3; i++)
        AddActor(actor, nullptr, nullptr, 0, 0, 0, nullptr);
    EXPECT_EQ(ActorCount, ACTOR_LIST_SIZE);
}

// Where the mesh's forward direction, its own -z, points to in the world.
Vec3 Forward(const Transform& base) {
    return {static_cast<float>(-base.r[6]), static_cast<float>(-base.r[7]), static_cast<float>(-base.r[8])};
}

TEST_F(ActorTest, MeshFacesWhereTheActorMoves) {
    actor.position = {100, -20, 3};
    for (const float heading : {0.0f, 30.0f, 90.0f, 180.0f, -100.0f, 725.0f}) {
        actor.angles.y = heading;
        UpdateActorBase(actor);
        Matrix3 rotation;
        RotationFromAngles(0, heading, 0, rotation);
        RotateVectorT(0, 0, 1, rotation);  // the way a drive along the actor's own z moves it
        const Vec3 forward = Forward(actor.base);
        EXPECT_NEAR(forward.x, RotatedVector.x, 1e-6) << heading;
        EXPECT_NEAR(forward.y, RotatedVector.y, 1e-6) << heading;
        EXPECT_NEAR(forward.z, RotatedVector.z, 1e-6) << heading;
        EXPECT_EQ(actor.base.t[1], -20.0);
    }
}

}  // namespace
