#include "math/convert.h"
#include "math/random.h"
#include "math/vectors.h"

#include "camera/camera_tables.h"
#include "memory/pool.h"
#include "render/render_tables.h"
#include "support/throwing_fatal.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

float Length(const Vec3& v) {
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

// A world of triangles and quads over shared points, in vectors of the test's own, and a small pool.
class GeometryPasses : public ::testing::Test {
protected:
    void SetUp() override { PoolInit(pool.data(), pool.data() + pool.size()); }
    void TearDown() override {
        WorldGeometry = {};
        PoolForget();
    }

    uint32_t AddPoint(float x, float y, float z) {
        points.push_back({{x, y, z}, {9.0f, 9.0f, 9.0f}});
        return static_cast<uint32_t>(points.size() - 1);
    }

    int32_t AddPolygon(std::initializer_list<uint32_t> corners, const Vec3& normal = {}) {
        const auto first = static_cast<uint16_t>(vertices.size());
        for (const uint32_t point : corners)
            vertices.push_back({point, 0.0f, 0.0f, 0.0f});
        const auto plane = static_cast<uint16_t>(planes.size());
        planes.push_back({normal.x, normal.y, normal.z, 0.0f});
        polygons.push_back({static_cast<uint8_t>(corners.size()), 0, 0, 0, 0, first, plane});
        return static_cast<int32_t>(polygons.size() - 1);
    }

    void Publish() {
        WorldGeometry.points = points.data();
        WorldGeometry.polyVertices = vertices.data();
        WorldGeometry.planes = planes.data();
        WorldGeometry.polygons = polygons.data();
        WorldGeometry.used.points = static_cast<uint32_t>(points.size());
        WorldGeometry.used.polygons = static_cast<uint32_t>(polygons.size());
    }

    std::vector<uint8_t> pool = std::vector<uint8_t>(1 << 20);
    std::vector<WorldPoint> points;
    std::vector<PolyVertex> vertices;
    std::vector<PlaneRecord> planes;
    std::vector<PolyRecord> polygons;
};

}  // namespace

TEST(Convert, EveryInputIsDefined) {
    const int32_t lowest = std::numeric_limits<int32_t>::min();
    EXPECT_EQ(TruncToInt(-2.7), -2);
    EXPECT_EQ(TruncToInt(2147483647.9), 2147483647);
    EXPECT_EQ(TruncToInt(2147483648.0), lowest);
    EXPECT_EQ(TruncToInt(-2147483648.9), lowest);
    EXPECT_EQ(TruncToInt(NAN), lowest);
    EXPECT_EQ(RoundToInt(2.5), 2);
    EXPECT_EQ(RoundToInt(3.5), 4);
    EXPECT_EQ(RoundToInt(-0.75), -1);
    EXPECT_EQ(RoundToInt(1e10), lowest);
    EXPECT_EQ(RoundToInt(NAN), lowest);
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
        EXPECT_NEAR(RotatedVector.x, row.out.x, 1e-6) << row.angles.x << ' ' << row.angles.y << ' ' << row.angles.z;
        EXPECT_NEAR(RotatedVector.y, row.out.y, 1e-6);
        EXPECT_NEAR(RotatedVector.z, row.out.z, 1e-6);
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
        EXPECT_NEAR(RotatedVector.x, v.x, 1e-3);
        EXPECT_NEAR(RotatedVector.y, v.y, 1e-3);
        EXPECT_NEAR(RotatedVector.z, v.z, 1e-3);
    }
}

TEST(Rotation, ViewRotationScalesOnlyRowOne) {
    ScreenAspect = 1.5f;
    Matrix3 plain, view;
    RotationFromAngles(10, 20, 30, plain);
    ViewRotationFromAngles(10, 20, 30, view);
    ScreenAspect = 1.0f;
    for (int i = 0; i < 9; i++)
        EXPECT_EQ(view.m[i], i / 3 == 1 ? plain.m[i] * 1.5f : plain.m[i]);
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

TEST_F(GeometryPasses, PointOnPlaneIsInFrontInAllFourSideTests) {
    BspNode node = {};
    WorldGeometry.nodes = &node;
    AddPolygon({}, {1, 0, 0});
    planes[0].d = -5.0f;
    Publish();
    struct Row {
        int32_t x, side;
    };
    for (const Row& row : {Row{5, 1}, Row{6, 1}, Row{4, -1}}) {
        SideTestPoint = {row.x, 7, 8};
        CameraPos = {static_cast<float>(row.x), 7.0f, 8.0f};
        EXPECT_EQ(NodeSideOfPoint(0), row.side);
        EXPECT_EQ(NodeSideOfCamera(0), row.side);
        EXPECT_EQ(PolySideOfPoint(0, row.x, 7, 8), row.side);
        EXPECT_EQ(PolySideOfCamera(0), row.side);
    }
}

TEST_F(GeometryPasses, PlaneFollowsTheRightHandRuleAndTheStoredNormal) {
    AddPoint(100.3f, 50.7f, 20.1f);
    AddPoint(107.9f, 50.7f, 33.3f);
    AddPoint(91.1f, 58.8f, 21.9f);
    const int32_t tilted = AddPolygon({0, 1, 2});
    AddPoint(0, 0, 0);
    AddPoint(1, 0, 0);
    AddPoint(0, 1, 0);
    const int32_t flat = AddPolygon({3, 4, 5});
    const int32_t line = AddPolygon({3, 4, 4}, {7, 7, 7});
    Publish();
    for (const int32_t polygon : {tilted, flat, line})
        ComputePolyPlane(polygon);

    const PlaneRecord& plane = planes[0];
    EXPECT_NEAR(plane.nx * plane.nx + plane.ny * plane.ny + plane.nz * plane.nz, 1.0, 1e-6);
    EXPECT_EQ(plane.d, -(100.3f * plane.nx + 50.7f * plane.ny + 20.1f * plane.nz));
    for (const WorldPoint& point : {points[1], points[2]}) {
        const Vec3& p = point.position;
        EXPECT_NEAR(plane.nx * p.x + plane.ny * p.y + plane.nz * p.z + plane.d, 0.0, 1e-4);
    }
    EXPECT_EQ(planes[1].nz, 1.0f);
    EXPECT_EQ(planes[2].nx, 0.0f);
    EXPECT_EQ(planes[2].d, 0.0f);
}

TEST_F(GeometryPasses, VertexNormalsAverageThePlanesOfTheirPolygons) {
    for (int i = 0; i < 9; i++)
        AddPoint(static_cast<float>(i % 3), 0.0f, static_cast<float>(i / 3));
    const uint32_t top = AddPoint(0, 1, 0), unused = AddPoint(5, 5, 5);
    const Vec3 floor = {0, -1, 0}, wall = {-1, 0, 0};
    for (const uint32_t first : {0u, 1u, 3u, 4u})
        AddPolygon({first, first + 1, first + 4, first + 3}, floor);
    AddPolygon({0, 3, top}, wall);
    Publish();
    const uint32_t freeBefore = PoolFreeTotal();
    GenerateVertexNormals();

    EXPECT_EQ(PoolFreeTotal(), freeBefore);
    for (const size_t inside : {1u, 2u, 4u, 5u, 6u, 7u, 8u}) {
        EXPECT_EQ(points[inside].normal.y, -1.0f);
        EXPECT_EQ(points[inside].normal.x, 0.0f);
    }
    EXPECT_NEAR(Length(points[0].normal), std::sqrt(0.5), 1e-6);  // one floor, one wall
    EXPECT_NEAR(points[3].normal.y, -2.0 / 3.0, 1e-6);            // two floors, one wall
    EXPECT_EQ(Length(points[unused].normal), 0.0f);
}

TEST_F(GeometryPasses, ManyPointsAndManyPolygonsAtOnePoint) {
    for (int i = 0; i < 20000; i++)
        AddPoint(0, 0, 0);
    for (int i = 0; i < 300; i++)
        AddPolygon({0, 0, 19999}, {0, i < 150 ? 1.0f : 0.0f, 0});
    Publish();
    const uint32_t freeBefore = PoolFreeTotal();
    GenerateVertexNormals();
    EXPECT_FLOAT_EQ(points[0].normal.y, 0.5f);
    EXPECT_FLOAT_EQ(points[19999].normal.y, 0.5f);
    EXPECT_EQ(PoolFreeTotal(), freeBefore);
}

TEST_F(GeometryPasses, FullPoolIsFatal) {
    PoolMalloc(PoolFreeTotal() - 64);
    try {
        GenerateVertexNormals();
        FAIL();
    } catch (const FatalThrown& fatal) {
        EXPECT_EQ(fatal.code, 1);
        EXPECT_EQ(fatal.text, "Generate Vert Normals - Mem Error");
    }
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
