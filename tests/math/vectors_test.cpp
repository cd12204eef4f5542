#include "math/convert.h"
#include "math/random.h"
#include "math/vectors.h"

#include "camera/camera_tables.h"
#include "memory/pool.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

float Length(const Vec3& v) {
    return std::hypot(v.x, v.y, v.z);
}

void ExpectNear(const Vec3& a, const Vec3& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

}  // namespace

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

TEST(Random, SameSequenceEverywhere) {
    RandState = RAND_SEED;
    const int32_t expected[] = {16838, 5758, 10113, 17515, 31051};
    for (const int32_t value : expected)
        EXPECT_EQ(Rand(), value);
    RandState = RAND_SEED;
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
        ExpectNear(RotatedVector, row.out, 1e-6);
    }
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

TEST(GeometryPasses, VertexNormalsAverageThePlanesOfTheirPolygons) {
    TinyWorld world;
    // A floor of two squares along x = 0 and a wall that stands at its end.
    world.AddLeaf({{{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}},
                   {{0, 0, 1}, {1, 0, 1}, {1, 0, 2}, {0, 0, 2}},
                   {{0, 0, 1}, {0, 1, 0}, {0, 0, 0}}});
    world.Publish();
    std::vector<uint8_t> pool(1 << 20);
    PoolInit(pool.data(), pool.data() + pool.size());
    const uint32_t freeBefore = PoolFreeTotal();
    GenerateVertexNormals();
    EXPECT_EQ(PoolFreeTotal(), freeBefore);
    const WorldPoint* points = WorldGeometry.points;
    ExpectNear(points[1].normal, {0, -1, 0}, 1e-6);
    EXPECT_NEAR(Length(points[0].normal), std::sqrt(0.5), 1e-6);  // one floor, one wall
    EXPECT_NEAR(std::abs(points[3].normal.y), 2.0 / 3.0, 1e-6);   // two floors, one wall
    EXPECT_NEAR(std::abs(points[3].normal.x), 1.0 / 3.0, 1e-6);
    PoolMalloc(PoolFreeTotal() - 64);
    EXPECT_THROW(GenerateVertexNormals(), FatalThrown) << "the pool is full";
    PoolForget();
}
