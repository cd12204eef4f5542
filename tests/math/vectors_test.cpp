#include "math/convert.h"
#include "math/vectors.h"
#include "math/world_planes.h"

#include "camera/camera_tables.h"
#include "support/tiny_world.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(Convert, EveryInputIsDefined) {
    const int32_t lowest = std::numeric_limits<int32_t>::min();
    const struct {
        double value;
        int32_t truncated, rounded;
    } rows[] = {{-2.7, -2, -3}, {2.5, 2, 2}, {3.5, 3, 4}, {2147483648.0, lowest, lowest}, {NAN, lowest, lowest}};
    for (const auto& row : rows) {
        EXPECT_EQ(TruncToInt(row.value), row.truncated) << row.value;
        EXPECT_EQ(RoundToInt(row.value), row.rounded) << row.value;
    }
    EXPECT_EQ(TruncToInt(2147483647.9), 2147483647);
}

TEST(GeometryPasses, PointOnPlaneIsInFrontInAllFourSideTests) {
    TinyWorld world;
    const int16_t leaf = world.AddLeaf({{{5, 0, 0}, {5, 0, 1}, {5, 1, 0}}});
    world.AddNode({-1, 0, 0, 5}, leaf, leaf);
    world.Publish();
    for (const auto& [x, side] : {std::pair{5, 1}, {4, 1}, {6, -1}}) {
        SideTestPoint = {x, 7, 8};
        CameraPos = {static_cast<float>(x), 7.0f, 8.0f};
        EXPECT_EQ(NodeSideOfPoint(0), side) << x;
        EXPECT_EQ(NodeSideOfCamera(0), side) << x;
        EXPECT_EQ(PolySideOfPoint(0, x, 7, 8), side) << x;
        EXPECT_EQ(PolySideOfCamera(0), side) << x;
    }
}
