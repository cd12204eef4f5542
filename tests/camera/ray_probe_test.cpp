// What few places of a level show; where the camera stands is recorded.
#include "camera/camera.h"

#include "support/tiny_world.h"

#include <gtest/gtest.h>

TEST(RayProbe, OfTwoWallsInTwoLeavesTheNearerHoldsTheCamera) {
    TinyWorld world;
    const int16_t nearLeaf = world.AddLeaf({FacingSquare({10, 0, 0}, {-1, 0, 0}, 50)});
    world.AddNode({1, 0, 0, -15}, world.AddLeaf({FacingSquare({20, 0, 0}, {-1, 0, 0}, 50)}), nearLeaf);
    world.Publish();
    EXPECT_FLOAT_EQ(CameraRayDistance({0, 0, 0}, {30, 0, 0}), 10);
}
