#include "camera/camera.h"

#include "character/character_tables.h"
#include "platform/input.h"
#include "render/render_tables.h"
#include "support/tiny_world.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr Vec3 NORTH = {0, 0, 1}, SOUTH = {0, 0, -1}, WEST = {-1, 0, 0};

float DistanceBetween(const Vec3& a, const Vec3& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

class CameraTest : public ::testing::Test {
protected:
    void SetUp() override {
        CameraState = {};
        CameraMode = CAMERA_FOLLOW;
        CameraPos = CameraAngles = {};
        CameraRotation = {};
        MouseInput = {};
        PlayerActor = {};
        ScreenAspect = 1.0f;
    }
    void TearDown() override { SetUp(); }

    static void Mouse(int16_t buttons, int16_t x, int16_t y) {
        MouseInput = {static_cast<int16_t>(buttons & 1), static_cast<int16_t>(buttons & 2), x, y, buttons};
    }

    static void Update(int frames) {
        for (int i = 0; i < frames; i++)
            UpdateCamera();
    }

    static float DistanceFromHead() {
        const Vec3& target = CameraState.target;
        return DistanceBetween(CameraPos, {target.x, target.y + CAMERA_HEAD_HEIGHT, target.z});
    }

    // A world of one leaf.
    void Build(const std::vector<Corners>& polygons) {
        world.AddLeaf(polygons);
        world.Publish();
    }

    TinyWorld world;
};

using ProbeTest = CameraTest;
using FollowCamera = CameraTest;
using FreeCamera = CameraTest;

}  // namespace

TEST_F(ProbeTest, OneWallRows) {
    struct Row {
        const char* what;
        Corners wall;
        Vec3 start, end;
        float distance;
    };
    const Vec3 origin = {0, 0, 0}, ahead = {0, 0, 250};
    const Row rows[] = {
        {"faces the start", FacingSquare({0, 0, 100}, SOUTH, 50), origin, ahead, 100},
        {"beyond the end, on the line", FacingSquare({0, 0, 400}, SOUTH, 50), origin, ahead, 400},
        {"turns its back", FacingSquare({0, 0, 100}, NORTH, 50), origin, ahead, 250},
        {"parallel to the line", FacingSquare({10, 0, 100}, WEST, 50), origin, ahead, 250},
        {"an edge of no length bounds nothing",
         {{-9, -9, 100}, {9, -9, 100}, {9, 9, 100}, {9, 9, 100}, {-9, 9, 100}},
         origin,
         ahead,
         100},
        {"touches the start, which counts as the positive side", FacingSquare(origin, SOUTH, 50), origin, ahead, 250},
        {"edge just inside the tolerance", FacingSquare({50.09f, 0, 100}, SOUTH, 50), origin, ahead, 100},
        {"edge just outside the tolerance", FacingSquare({50.11f, 0, 100}, SOUTH, 50), origin, ahead, 250},
        {"a tiny sideways component keeps its sign",
         FacingSquare({3000, 0, 100}, SOUTH, 50),
         {3000, 0, 0},
         {2999.9998f, 0, 250},
         100},
        {"no length", FacingSquare({0, 0, 100}, SOUTH, 50), origin, origin, 0},
    };
    for (const Row& row : rows) {
        TinyWorld one;
        one.AddLeaf({row.wall});
        one.Publish();
        EXPECT_NEAR(CameraRayDistance(row.start, row.end), row.distance, 1e-3) << row.what;
    }
}

TEST_F(ProbeTest, InsideARoomTheDistanceIsThatOfTheBox) {
    const float size[] = {300, 200, 400};
    Build(RoomSides({-300, -200, -400}, {300, 200, 400}));
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

TEST_F(FollowCamera, StopsTwentyInFrontOfAWall) {
    struct Row {
        float wall, camera;
    };
    for (const Row& row : {Row{100, 80}, Row{249, 229}, Row{260, 230}, Row{10, -10}}) {
        TinyWorld slab;
        slab.AddLeaf({FacingSquare({0, 0, -row.wall}, NORTH, 500)});
        slab.Publish();
        UpdateCamera();
        EXPECT_NEAR(CameraPos.z, -row.camera, 1e-2) << row.wall;
    }
}

TEST_F(FollowCamera, LookIsLimitedButItsAccumulatorIsNot) {
    Build({});
    const struct {
        int16_t button, x, y;
        int frames;
        float pitch;
    } rows[] = {{1, 0, 100, 1, 15.0f},   // 25 before the limit
                {0, 0, 100, 10, 15.0f},  // without the button nothing is added
                {1, 0, -80, 1, 15.0f},   // the accumulator is still above
                {1, 0, -20, 1, 11.25f},
                {1, 40, -1000, 30, -90.0f}};
    for (const auto& row : rows) {
        Mouse(row.button, row.x, row.y);
        Update(row.frames);
        EXPECT_EQ(CameraAngles.x, row.pitch) << "row " << &row - rows;
    }
    EXPECT_NEAR(CameraAngles.y, 1200.0 - 3 * 40.0, 0.1);  // unlimited, three frames behind
}

TEST_F(FreeCamera, MovesAndLooksByTheButtons) {
    const struct {
        const char* what;
        int16_t buttons, x, y;
        float moveX, moveZ, yaw, pitch;  // moves after their decay by a quarter
    } rows[] = {
        {"no button moves", 0, 43, -43, 7.5f, 7.5f, 0, 0},  {"left looks", 1, 43, 43, 0, 0, -5, 5},
        {"right does nothing", 2, 43, 43, 0, 0, 0, 0},      {"both look", 3, -43, -43, 0, 0, 5, -5},
        {"three counts are too few", 0, 3, -3, 0, 0, 0, 0}, {"seven counts are too few to look", 1, 7, -7, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        SetUp();
        CameraMode = CAMERA_FREE;
        Mouse(row.buttons, row.x, row.y);
        UpdateCamera();
        const float found[] = {CameraState.moveX, CameraState.moveZ, CameraAngles.y, CameraAngles.x};
        const float expected[] = {row.moveX, row.moveZ, row.yaw / 4, row.pitch / 4};
        EXPECT_TRUE(std::equal(found, found + 4, expected)) << row.what;
    }
}
