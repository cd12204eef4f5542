#include "render/pipeline.h"

#include "platform/timer.h"
#include "render/raster.h"
#include "render/render_tables.h"
#include "render/scene.h"
#include "render/submit.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace {

class Pipeline : public testing::Test {
protected:
    void SetUp() override {
        MakeWorld(100);
        MakeFrame(320, 240, 320);
        ProjectionScaleX = 158.4f;
        ProjectionScaleY = 118.8f;
        ScreenCentreX = 160;
        ScreenCentreY = 120;
        LoadTextures(MakeTextureFile({{0, 0, 0, 64, 64}}, 1));
        BuildReciprocalTable();
        SubmittedPolygons = 0;
    }
};

std::vector<Corner> CornersOf(const PolyRecord& polygon) {
    std::vector<Corner> corners;
    for (uint32_t i = polygon.firstVertex; i < uint32_t{polygon.firstVertex} + polygon.cornerCount; i++) {
        const PolyVertex& vertex = WorldGeometry.polyVertices[i];
        const ViewPoint& point = WorldGeometry.viewPoints[vertex.point];
        corners.push_back({point.x, point.y, point.z, vertex.u, vertex.v, vertex.intensity});
    }
    return corners;
}

// Corners inside 90 degrees on three sides, `outside` of them beyond x = z.
std::vector<Corner> Triangle(int outside) {
    std::vector<Corner> corners = {
        {-20, -20, 100, 0, 0, 0}, {20, -20, 100, 640, 0, 1000}, {0, 20, 100, 320, 640, 2000}};
    for (int i = 0; i < outside; i++)
        corners[static_cast<size_t>(1 + i)].x = 180;
    return corners;
}

TEST_F(Pipeline, ClippingCutsCornersOffAndKeepsTextureAndFlagsOnly) {
    const int outcomes[][2] = {{1, 4}, {2, 3}};
    for (const auto& [outside, corners] : outcomes) {
        const int32_t number = AddPolygon(Triangle(outside), 7);
        WorldGeometry.polygons[number].flags = POLY_WRAPS;
        const PolyRecord* clipped = ClipPolygon(number, OUT_RIGHT);
        EXPECT_EQ(+clipped->cornerCount, corners);
        EXPECT_EQ(+clipped->texture, 7);
        EXPECT_EQ(+clipped->flags, POLY_WRAPS);
        for (const Corner& corner : CornersOf(*clipped))
            EXPECT_LE(corner.x, corner.z);
    }
}

TEST_F(Pipeline, CrossingsLieOnThePlaneWithAttributesInProportion) {
    const uint8_t planes[] = {OUT_RIGHT, OUT_LEFT, OUT_TOP, OUT_BOTTOM};
    for (int plane = 0; plane < 4; plane++) {
        const float far = plane % 2 == 0 ? 150.0f : -150.0f;
        Corner outside = {plane < 2 ? far : 10, plane < 2 ? 10 : far, 50, 8, 80, 800};  // crossed at two thirds of z
        const int32_t number = AddPolygon({{0, 0, 100, 0, 0, 0}, outside, {0, 0, 60, 0, 0, 0}});
        const std::vector<Corner> corners = CornersOf(*ClipPolygon(number, planes[plane]));
        ASSERT_EQ(corners.size(), 4u);
        EXPECT_EQ(plane < 2 ? corners[1].x : corners[1].y, far > 0 ? corners[1].z : -corners[1].z);
        EXPECT_FLOAT_EQ(corners[1].z, 75);
        EXPECT_FLOAT_EQ(plane < 2 ? corners[1].y : corners[1].x, 5);
        EXPECT_FLOAT_EQ(corners[1].u, 4);
        EXPECT_FLOAT_EQ(corners[1].v, 40);
        EXPECT_FLOAT_EQ(corners[1].intensity, 400);
    }
}

TEST_F(Pipeline, AnEdgeGivesTheSameCrossingsInBothDirections) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> at(-300, 300), depth(1, 200);
    const auto corner = [&] {
        return Corner{at(random), at(random), depth(random), at(random), at(random), at(random)};
    };
    for (int i = 0; i < 200; i++) {
        MakeWorld(2);
        const Corner a = corner(), b = corner();
        const auto crossings = [](int32_t number) { return CornersOf(*ClipPolygon(number, OUT_SIDES)); };
        // A degenerate polygon that is nothing but the edge, there and back: each crossing appears twice, alike.
        const std::vector<Corner> forth = crossings(AddPolygon({a, b}));
        const std::vector<Corner> back = crossings(AddPolygon({b, a}));
        ASSERT_EQ(forth.size(), back.size());
        for (const Corner& point : forth) {
            EXPECT_TRUE(std::any_of(back.begin(), back.end(), [&](const Corner& other) {
                return std::memcmp(&point, &other, sizeof point) == 0;
            }));
            EXPECT_TRUE(point.x <= point.z && point.x >= -point.z && point.y <= point.z && point.y >= -point.z);
        }
    }
}

TEST_F(Pipeline, FourPlanesAddAtMostFourCornersAndCanLeaveNone) {
    const int32_t tilted =
        AddPolygon({{-150, 0, 100, 0, 0, 0}, {0, -150, 100, 0, 0, 0}, {150, 0, 100, 0, 0, 0}, {0, 150, 100, 0, 0, 0}});
    EXPECT_EQ(+ClipPolygon(tilted, OUT_SIDES)->cornerCount, 8);
    // Reaches past two planes, but never into the corner between them.
    const int32_t missing = AddPolygon({{190, 90, 100, 0, 0, 0}, {90, 190, 100, 0, 0, 0}, {200, 200, 100, 0, 0, 0}});
    EXPECT_EQ(+ClipPolygon(missing, OUT_RIGHT | OUT_TOP)->cornerCount, 0);
    DrawPolygonClipped(missing, OUT_RIGHT | OUT_TOP);
    EXPECT_EQ(SubmittedPolygons, 0u);
}

TEST_F(Pipeline, APolygonTooLargeForTheScratchSpaceComesOutEmpty) {
    std::vector<Corner> comb;
    for (int i = 0; i < 120; i++)
        comb.push_back({i % 2 == 0 ? 90.0f : 110.0f, static_cast<float>(i) - 60, 100, 0, 0, 0});
    const int32_t number = AddPolygon(comb);
    WorldGeometry.polyVertices[WorldGeometry.fixed.polyVertices + CLIP_SCRATCH_ENTRIES].point = 4711;
    EXPECT_EQ(+ClipPolygon(number, OUT_SIDES)->cornerCount, 0);
    EXPECT_EQ(WorldGeometry.polyVertices[WorldGeometry.fixed.polyVertices + CLIP_SCRATCH_ENTRIES].point, 4711u);
}

TEST_F(Pipeline, ProjectionTruncatesToFixedPixelsWithRowsDownwards) {
    const int32_t number = AddPolygon({{-3, 5, 20, 0, 0, 0}, {7, -11, 30, 0, 0, 0}, {1, 1, 0, 0, 0, 0}});
    DrawMeshPolygon(number);
    for (uint32_t i = 0; i < 2; i++) {
        const ViewPoint& point = WorldGeometry.viewPoints[i];
        EXPECT_NEAR(point.screen.fixed.x, (point.x * 158.4 / point.z + 160) * 65536, 4);
        EXPECT_NEAR(point.screen.fixed.y, (-point.y * 118.8 / point.z + 120) * 65536, 4);
        EXPECT_EQ(point.inverseDepth, 1 / point.z);
    }
    const ViewPoint& atEye = WorldGeometry.viewPoints[2];
    EXPECT_EQ(atEye.screen.fixed.x, 160 * 65536);
    EXPECT_EQ(atEye.screen.fixed.y, 120 * 65536);
    EXPECT_EQ(atEye.inverseDepth, 0);
}

TEST_F(Pipeline, APointIsProjectedOnceAFrameAndACrossingEveryTime) {
    const int32_t number = AddPolygon(Triangle(1));
    DrawMeshPolygonClipped(number, OUT_RIGHT);
    const ViewPoint& point = WorldGeometry.viewPoints[0];
    const ViewPoint& crossing = WorldGeometry.viewPoints[WorldGeometry.fixed.points];
    const int32_t before = point.screen.fixed.x, crossingBefore = crossing.screen.fixed.y;
    for (uint32_t i = 0; i < 3; i++) {
        WorldGeometry.viewPoints[i].x -= 5;
        WorldGeometry.viewPoints[i].y -= 5;
    }
    DrawMeshPolygonClipped(number, OUT_RIGHT);
    EXPECT_EQ(point.screen.fixed.x, before);
    EXPECT_NE(crossing.screen.fixed.y, crossingBefore);
    FrameCount++;
    DrawMeshPolygon(number);
    EXPECT_NE(point.screen.fixed.x, before);
}

TEST_F(Pipeline, OutcodesChooseBetweenRejectingDrawingAndClipping) {
    struct Case {
        const char* rule;
        uint8_t codes[3];
        uint32_t submitted;
        bool clips;
    };
    const Case cases[] = {{"all beyond the far limit", {OUT_DEPTH, OUT_DEPTH | OUT_TOP, OUT_DEPTH}, 0, false},
                          {"some beyond the far limit", {OUT_DEPTH, 0, 0}, 1, false},
                          {"all inside", {0, 0, 0}, 1, false},
                          {"outside of different planes", {OUT_RIGHT, 0, OUT_LEFT | OUT_DEPTH}, 1, true}};
    for (const Case& c : cases) {
        MakeWorld(1);
        const int32_t number = AddPolygon(Triangle(0));
        std::copy_n(c.codes, 3, WorldGeometry.outcodes);
        SubmittedPolygons = 0;
        DrawPolygonAuto(number);
        EXPECT_EQ(SubmittedPolygons, c.submitted) << c.rule;
        EXPECT_EQ(Recorded.shaded.size(), c.submitted) << c.rule;
        EXPECT_EQ(WorldGeometry.polygons[1].cornerCount != 0, c.clips) << c.rule;
    }
}

TEST_F(Pipeline, TexturesWithHolesOrTheFlagAreDrawnTransparent) {
    const auto background = [](uint8_t transparency, uint32_t flags) {
        MakeWorld(1);
        FillFrame(0x77);
        std::fill_n(TextureImage + TextureRecords()[0].texelOffset, 64 * 256, uint8_t{0});
        TextureRecords()[0].isTransparent = transparency;
        const int32_t number = AddPolygon({{-50, 50, 100, 0, 0, 0}, {-50, -50, 100, 0, 0, 0}, {50, -50, 100, 0, 0, 0}});
        DrawMeshPolygon(number);
        FillFrame(0x77);
        SubmitPolygon(&WorldGeometry.polygons[number], flags);
        const std::vector<uint8_t> pixels = FramePixels();
        return std::count(pixels.begin(), pixels.end(), 0x77) == 320 * 240;
    };
    EXPECT_FALSE(background(0, 0));
    EXPECT_TRUE(background(1, 0));
    EXPECT_TRUE(background(0, DRAW_TRANSPARENT));
}

}  // namespace
