// Cases that few places of a level show. Where the camera stands is tested by the recordings.
#include "camera/camera.h"

#include "support/tiny_world.h"

#include <gtest/gtest.h>

TEST(RayProbe, TheNearestOfSeveralWallsHoldsTheCamera) {
    const auto wall = [](float x) { return FacingSquare({x, 0, 0}, {-1, 0, 0}, 50); };
    TinyWorld world;
    const int16_t nearLeaf = world.AddLeaf({wall(12), wall(10)});
    world.AddNode({1, 0, 0, -15}, world.AddLeaf({wall(20)}), nearLeaf);
    world.Publish();
    EXPECT_FLOAT_EQ(CameraRayDistance({0, 0, 0}, {30, 0, 0}), 10);
}
