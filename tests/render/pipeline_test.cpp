#include "render/pipeline.h"

#include "platform/timer.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "render/submit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace {

class Pipeline : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld();
        MakeFrame(320, 240, 320);
        LoadTextures(MakeTextureFile({{0, 0, 0, 64, 64}}, 1));
        BuildReciprocalTable();
        SubmittedPolygons = 0;
    }
};

std::vector<ViewCorner> Clip(int32_t number, uint8_t planes) {
    const PolyRecord* polygon = ClipPolygon(number, planes);
    std::vector<ViewCorner> corners;
    for (uint32_t i = polygon->firstVertex; i < uint32_t{polygon->firstVertex} + polygon->cornerCount; ++i) {
        const PolyVertex& vertex = WorldGeometry.polyVertices[i];
        const ViewPoint& point = WorldGeometry.viewPoints[vertex.point];
        corners.push_back({point.x, point.y, point.z, vertex.u, vertex.v, vertex.intensity});
    }
    return corners;
}

TEST_F(Pipeline, AnEdgeGivesTheSameCrossingsInBothDirections) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> at(-300, 300), depth(1, 200);
    const auto corner = [&] {
        return ViewCorner{at(random), at(random), depth(random), at(random), at(random), at(random)};
    };
    for (int i = 0; i < 200; ++i) {
        const ViewCorner a = corner(), b = corner();
        // A degenerate polygon that is nothing but the edge, there and back: each crossing appears twice, alike.
        const std::vector<ViewCorner> forth = Clip(AppendPolygon({a, b}), OUT_SIDES);
        const std::vector<ViewCorner> back = Clip(AppendPolygon({b, a}), OUT_SIDES);
        ASSERT_EQ(forth.size(), back.size());
        for (const ViewCorner& point : forth) {
            EXPECT_TRUE(std::any_of(back.begin(), back.end(), [&](const ViewCorner& other) {
                return std::memcmp(&point, &other, sizeof point) == 0;
            }));
            EXPECT_TRUE(point.x <= point.z && point.x >= -point.z && point.y <= point.z && point.y >= -point.z);
        }
    }
}

TEST_F(Pipeline, ClippingAddsFourCornersAtMostAndCanLeaveNone) {
    const int32_t tilted = AppendPolygon(
        {{-150, 0, 100, 0, 0, 0}, {0, -150, 100, 0, 0, 0}, {150, 0, 100, 0, 0, 0}, {0, 150, 100, 0, 0, 0}});
    EXPECT_EQ(Clip(tilted, OUT_SIDES).size(), 8u);
    // A polygon that reaches past two planes, but never into the corner between them.
    const int32_t missing = AppendPolygon({{190, 90, 100, 0, 0, 0}, {90, 190, 100, 0, 0, 0}, {200, 200, 100, 0, 0, 0}});
    DrawPolygonClipped(missing, OUT_RIGHT | OUT_TOP);
    EXPECT_EQ(SubmittedPolygons, 0u);

    std::vector<ViewCorner> comb;  // too large for the scratch space
    for (int i = 0; i < 120; ++i)
        comb.push_back({i % 2 == 0 ? 90.0f : 110.0f, static_cast<float>(i) - 60, 100, 0, 0, 0});
    PolyVertex& behind = WorldGeometry.polyVertices[WorldGeometry.fixed.polyVertices + CLIP_SCRATCH_ENTRIES];
    behind.point = 4711;
    EXPECT_TRUE(Clip(AppendPolygon(comb), OUT_SIDES).empty());
    EXPECT_EQ(behind.point, 4711u);
}

}  // namespace
