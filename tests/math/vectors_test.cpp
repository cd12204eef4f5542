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

TEST(Rotation, TransposeUndoesTheRotation) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> angle(-1e6f, 1e6f), component(-1000.0f, 1000.0f);
    for (int i = 0; i < 1000; i++) {
        Matrix3 m;
        RotationFromAngles(angle(random), angle(random), angle(random), m);
        const Vec3 v = {component(random), component(random), component(random)};
        RotateVector(v.x, v.y, v.z, m);
        const Vec3 turned = RotatedVector;
        EXPECT_NEAR(Length(turned), Length(v), 1e-3);
        RotateVectorT(turned.x, turned.y, turned.z, m);
        ExpectNear(RotatedVector, v, 1e-3);
    }
}

TEST(Rotation, IntegerFormsTruncateTheFinishedSums) {
    const Matrix3 m = {{0.9f, 0.9f, 0.9f, -0.9f, -0.9f, -0.9f, 0.0f, 0.0f, 3e9f}};
    RotateIntVector(1, 1, 1, m);
    EXPECT_EQ(RotatedIntVector.x, 2);   // 2.7, not three times 0
    EXPECT_EQ(RotatedIntVector.y, -2);  // -2.7, not -3
    EXPECT_EQ(RotatedIntVector.z, std::numeric_limits<int32_t>::min());
    RotateIntVectorT(3, 0, 0, m);
    EXPECT_EQ(RotatedIntVector.z, 2);
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

TEST(GeometryPasses, PlaneFollowsTheRightHandRuleAndTheStoredNormal) {
    const Corners tilted = {{100.3f, 50.7f, 20.1f}, {107.9f, 50.7f, 33.3f}, {91.1f, 58.8f, 21.9f}};
    TinyWorld world;
    world.AddLeaf({tilted, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 0, 0}, {1, 0, 0}, {1, 0, 0}}});
    world.Publish();  // computes the planes
    const PlaneRecord* planes = WorldGeometry.planes;
    EXPECT_NEAR(Length({planes[0].nx, planes[0].ny, planes[0].nz}), 1.0, 1e-6);
    EXPECT_EQ(planes[0].d, -(100.3f * planes[0].nx + 50.7f * planes[0].ny + 20.1f * planes[0].nz));
    for (const Vec3& p : tilted)
        EXPECT_NEAR(planes[0].nx * p.x + planes[0].ny * p.y + planes[0].nz * p.z + planes[0].d, 0.0, 1e-4);
    EXPECT_EQ(planes[1].nz, 1.0f);
    EXPECT_EQ(planes[2].nx, 0.0f) << "a line";
    EXPECT_EQ(planes[2].d, 0.0f);
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

TEST(Transforms, ConcatAppliesTheSecondFirst) {
    const Transform quarterAboutZ = {{0, 1, 0, -1, 0, 0, 0, 0, 1}, {100, 0, 0}};  // x -> y, y -> -x
    Transform shift;
    TransformIdentity(shift);
    shift.t[0] = 1.0;
    shift.t[1] = 2.0;
    Transform both;
    TransformConcat(quarterAboutZ, shift, both);
    double point[3] = {10, 20, 30};
    RotateDVector(point, both.r);
    EXPECT_EQ(point[0] + both.t[0], 78.0);  // (11, 22, 30) turned: (-22, 11, 30), and 100 to the right
    EXPECT_EQ(point[1] + both.t[1], 11.0);
    EXPECT_EQ(point[2] + both.t[2], 30.0);
}
