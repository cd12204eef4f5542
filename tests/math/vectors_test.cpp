#include "math/convert.h"
#include "math/vectors.h"

#include "camera/camera_tables.h"
#include "support/pool_fixture.h"
#include "support/tiny_world.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

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

TEST(Rotation, AxesTurnYThenXThenZ) {
    struct Row {
        Vec3 angles, in, out;
    };
    const Row rows[] = {
        {{0, 0, 0}, {1, 2, 3}, {1, 2, 3}},
        {{90, 0, 0}, {0, 1, 0}, {0, 0, 1}},
        {{90, 0, 0}, {0, 0, 1}, {0, -1, 0}},
        {{0, 90, 0}, {0, 0, 1}, {1, 0, 0}},
        {{0, 0, 90}, {1, 0, 0}, {0, 1, 0}},
        {{90, 90, 0}, {1, 0, 0}, {0, 1, 0}},    // y first: x -> -z, then about x: -z -> y
        {{90, 90, 90}, {1, 0, 0}, {-1, 0, 0}},  // and y -> -x about z
    };
    for (const Row& row : rows) {
        Matrix3 m;
        RotationFromAngles(row.angles.x, row.angles.y, row.angles.z, m);
        RotateVector(row.in.x, row.in.y, row.in.z, m);
        SCOPED_TRACE(&row - rows);
        EXPECT_NEAR(RotatedVector.x, row.out.x, 1e-6);
        EXPECT_NEAR(RotatedVector.y, row.out.y, 1e-6);
        EXPECT_NEAR(RotatedVector.z, row.out.z, 1e-6);
    }
}

class VertexNormals : public PoolFixture {};

TEST_F(VertexNormals, AreTheMeansOfThePlanesAroundEachPointTheCharactersToo) {
    TinyWorld world;
    world.AddLeaf({{{0, 0, 0}, {0, 0, 9}, {9, 0, 0}}, {{0, 0, 0}, {9, 0, 0}, {0, 9, 0}}});
    world.Publish();
    WorldGeometry.planes[0] = {0, 1, 0, 0};
    WorldGeometry.planes[1] = {0, 0, 1, 0};
    const uint32_t character = WorldGeometry.used.points;
    AppendPolygon({{1, 2, 3, 0, 0, 0}, {1, 2, 4, 0, 0, 0}, {1, 3, 3, 0, 0, 0}});
    WorldGeometry.points[character + 2].normal = {7, 7, 7};  // of the level before
    GenerateVertexNormals();
    const auto normal = [](uint32_t point) {
        const Vec3 n = WorldGeometry.points[point].normal;
        return std::vector<float>{n.x, n.y, n.z};
    };
    EXPECT_EQ(normal(0), (std::vector<float>{0, 0.5f, 0.5f}));
    EXPECT_EQ(normal(1), (std::vector<float>{0, 1, 0}));
    EXPECT_EQ(normal(3), (std::vector<float>{0, 0, 1}));
    EXPECT_EQ(normal(character + 2), (std::vector<float>{0, 1, 0}));
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
