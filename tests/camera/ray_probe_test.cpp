#include "camera/camera.h"

#include "support/tiny_world.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

TEST(RayProbe, InsideARoomTheDistanceIsThatOfTheBox) {
    const float size[] = {300, 200, 400};
    TinyWorld world;
    world.AddLeaf(RoomSides({-300, -200, -400}, {300, 200, 400}));
    world.Publish();
    std::mt19937 random(5);
    std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
    for (int i = 0; i < 2000; i++) {
        const float start[] = {unit(random) * 290, unit(random) * 190, unit(random) * 390};
        const float way[] = {unit(random) * 100, unit(random) * 100, unit(random) * 100};
        double nearest = 1e9;  // in lengths of `way`
        for (int k = 0; k < 3; k++)
            nearest = std::min(nearest, (std::copysign(double{size[k]}, way[k]) - start[k]) / way[k]);
        const double expected = nearest * std::hypot(way[0], way[1], way[2]);
        const float distance = CameraRayDistance({start[0], start[1], start[2]},
                                                 {start[0] + way[0], start[1] + way[1], start[2] + way[2]});
        ASSERT_NEAR(distance, expected, 1e-3 * expected) << "ray " << i;
    }
}
