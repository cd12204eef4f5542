// The sky turns with the camera and never moves.
#include "world/draw/draw_sky.h"

#include "platform/timer.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "support/pipeline_spy.h"
#include "support/tiny_world.h"
#include "support/view.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

namespace {

// Polygons ahead of the eye, across the left side of the view, and behind the eye.
class Sky : public testing::Test {
protected:
    void SetUp() override {
        world_.AddLeaf({FacingSquare({0, 0, 400}, {0, 0, -1}, 10)});
        world_.Publish();
        const GeometryCounts before = WorldGeometry.used;
        for (const Vec3 place : {Vec3{0, 77, 1000}, Vec3{-1000, 77, 1000}, Vec3{0, 77, -1000}})
            AppendPolygon({{place.x - 9, place.y, place.z, 0, 0, 8192},
                           {place.x + 9, place.y, place.z, 0, 0, 8192},
                           {place.x, place.y + 9, place.z, 0, 0, 8192}});
        SkyObject = {static_cast<int32_t>(before.polygons), static_cast<int32_t>(before.points), 3, 9};
        firstPoint_ = before.points;
        ScreenAspect = 1.0f;
        FogSwitch = FOG_SWITCH_ON;
    }
    void TearDown() override {
        SkyObject = {};
        FogSwitch = FOG_SWITCH_ON;
    }

    std::string Draw(const Vec3& eye, float pitch, float yaw) {
        PipelineLog.clear();
        ++FrameCount;
        LookFrom(eye, pitch, yaw);
        DrawSky();
        return PipelineLog;
    }

    TinyWorld world_;
    uint32_t firstPoint_ = 0;
};

TEST_F(Sky, TurnsWithTheCameraButDoesNotMoveWithIt) {
    const ViewPoint* top = WorldGeometry.viewPoints + firstPoint_ + 2;
    EXPECT_EQ(Draw({0, 0, 0}, 0, 0), "D1 C2/2") << "in file order, without the one behind";
    EXPECT_FLOAT_EQ(top->z, 1000.0f);
    EXPECT_FLOAT_EQ(top->y, 9.0f) << "77 above the eye is level";
    EXPECT_EQ(top->transformStamp, FrameCount);
    const ViewPoint before = *top;
    BeginNearestFirst();
    EXPECT_EQ(Draw({30000, -500, 900}, 0, 0), "C2/2 D1");
    EndNearestFirst();
    EXPECT_EQ(top->x, before.x);
    EXPECT_EQ(top->y, before.y);
    EXPECT_EQ(top->z, before.z);
    EXPECT_EQ(Draw({0, 0, 0}, 0, 180), "D3");
    EXPECT_EQ(Draw({0, 0, 0}, 80, 0), "") << "looking up";
    EXPECT_EQ(WorldGeometry.polyVertices[WorldGeometry.polygons[3].firstVertex].intensity, 16128.0f);
}

TEST_F(Sky, PolygonsThatThePipelineCannotTakeAreNotDrawn) {
    for (const uint8_t corners : {uint8_t{2}, uint8_t{13}, uint8_t{127}}) {
        WorldGeometry.polygons[1].cornerCount = corners;
        EXPECT_EQ(Draw({0, 0, 0}, 0, 0), "C2/2") << +corners;
    }
    WorldGeometry.polygons[1].cornerCount = 12;
    EXPECT_NE(Draw({0, 0, 0}, 0, 0), "C2/2");
}

TEST_F(Sky, IsNotDrawnAmongOutlines) {
    FogSwitch = 0;
    EXPECT_EQ(Draw({0, 0, 0}, 0, 0), "");
    EXPECT_EQ(WorldGeometry.polyVertices[WorldGeometry.polygons[1].firstVertex].intensity, 8192.0f);
}

}  // namespace
