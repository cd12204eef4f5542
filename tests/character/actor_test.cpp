#include "character/actor.h"

#include "math/vectors.h"

#include <gtest/gtest.h>

namespace {

class ActorTest : public testing::Test {
protected:
    ~ActorTest() override { ActorCount = 0; }

    Actor actor{};
};

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
