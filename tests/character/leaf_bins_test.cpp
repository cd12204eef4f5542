#include "character/leaf_bins.h"

#include "camera/camera_tables.h"
#include "character/actor.h"
#include "character/depth_list.h"
#include "lights/light_slots.h"
#include "platform/timer.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// A grid of four leaves around the origin, cut by the planes x = 0 and z = 0, and room for triangles of a character.
class Bins : public testing::Test {
protected:
    Bins() {
        int16_t leaves[4];
        for (int i = 0; i < 4; ++i) {
            const float x = i & 1 ? 200.0f : -200.0f;
            const float z = i & 2 ? 200.0f : -200.0f;
            leaves[i] = world_.AddLeaf({{{x, 0, z}, {x + 10, 0, z}, {x + 10, 0, z + 10}}});
        }
        const int16_t right = world_.AddNode({0, 0, 1, 0}, leaves[3], leaves[1]);
        const int16_t left = world_.AddNode({0, 0, 1, 0}, leaves[2], leaves[0]);
        world_.AddNode({1, 0, 0, 0}, right, left);
        world_.Publish();
        ClearVisibleList();
        FrameCount = 5;
        CharPolygon_ = WorldGeometry.used.polygons;
    }

    // The corners have normals that hold their x, and u and v laid out as x and z.
    void AddTriangle(Vec3 a, Vec3 b, Vec3 c) {
        const uint32_t first = WorldGeometry.used.points;
        AppendVisible(static_cast<uint32_t>(
            AppendPolygon({{a.x, a.y, a.z, a.x, a.z, 0}, {b.x, b.y, b.z, b.x, b.z, 0}, {c.x, c.y, c.z, c.x, c.z, 0}})));
        for (uint32_t p = first; p < first + 3; ++p)
            WorldGeometry.points[p].normal = {0, WorldGeometry.viewPoints[p].x, 0};
    }

    void Bin(Vec3 actor = {0, 0, 0}) { BinActorPolygons(VisibleCount(), actor.x, actor.y, actor.z); }

    static bool Filled(int leaf) { return WorldGeometry.leaves[leaf].frameStamp == FrameCount; }

    TinyWorld world_;
    uint32_t CharPolygon_;
};

// Everything else about pieces is tested by the recordings.
TEST_F(Bins, APieceHasTheNormalsAndTexelsOfItsPlaces) {
    AddTriangle({-40, 0, -30}, {50, 0, -20}, {10, 0, 60});
    Bin({99, 0, -99});  // just near enough to the planes
    for (int leaf = 0; leaf < 4; ++leaf) {
        ASSERT_TRUE(Filled(leaf));
        for (int i = 0; i < LeafBins[leaf].count; ++i) {
            const PolyRecord record = WorldGeometry.polygons[LeafBins[leaf].polygons[i]];
            for (uint32_t k = 0; k < record.cornerCount; ++k) {
                const PolyVertex& corner = WorldGeometry.polyVertices[record.firstVertex + k];
                const ViewPoint& place = WorldGeometry.viewPoints[corner.point];
                EXPECT_NEAR(WorldGeometry.points[corner.point].normal.y, place.x, 1e-3f);
                EXPECT_NEAR(corner.u, place.x, 1e-3f);
                EXPECT_NEAR(corner.v, place.z, 1e-3f);
            }
        }
    }
}

TEST_F(Bins, APieceOfMoreThanTwelveCornersIsDropped) {
    std::vector<ViewCorner> corners;
    for (int i = 0; i < 12; ++i) {
        const float angle = 0.5235988f * (static_cast<float>(i) + 0.5f);
        corners.push_back({std::max(50 * std::cos(angle) + 46, 3.0f), 0, 50 * std::sin(angle), 0, 0, 0});
    }
    corners[5].x = -20;  // of the others each has a place on the right, and so do the two crossings
    AppendVisible(static_cast<uint32_t>(AppendPolygon(corners)));
    Bin({0, 0, 300});
    EXPECT_TRUE(Filled(2));
    EXPECT_EQ(LeafBins[2].count, 1);
    EXPECT_EQ(DroppedPolygons, 1u);
}

TEST_F(Bins, WhatDoesNotFitIsDroppedAndCounted) {
    AddTriangle({-40, 0, 20}, {50, 0, 20}, {10, 0, 60});
    for (int i = 0; i < 3000; ++i)
        AppendVisible(CharPolygon_);
    Bin();
    EXPECT_GT(DroppedPolygons, 0u);
    int32_t binned = 0;
    for (int leaf = 0; leaf < 4; ++leaf)
        binned += Filled(leaf) ? LeafBins[leaf].count : 0;
    EXPECT_GT(binned, 0);
}

std::vector<int> DepthOrder() {
    std::vector<int> order;
    for (int32_t k = DepthList[0].next; DepthList[k].depth != DEPTH_LIST_TAIL; k = DepthList[k].next)
        order.push_back(DepthList[k].polygon);
    return order;
}

TEST(DepthListTest, RunsFromFarToNearAndKeepsTheOrderOfEquals) {
    ClearVisibleList();
    InitDepthList();
    for (const auto& [depth, polygon] : {std::pair{5.0f, 1},
                                         {-0.0f, 2},
                                         {5.0f, 3},
                                         {NAN, 4},
                                         {1e9f, 5},
                                         {0.0f, 6},
                                         {-3.0f, 7},
                                         {-700.0f, 8},
                                         {1e-40f, 9}})
        InsertByDepth(depth, static_cast<int16_t>(polygon));
    LinkDepthList();
    EXPECT_EQ(DepthOrder(), (std::vector<int>{5, 1, 3, 9, 2, 6, 7, 8, 4}));
    for (int i = 0; i < 3000; ++i)
        InsertByDepth(1.0f, 9);
    EXPECT_EQ(DroppedPolygons, 9u + 3000u - (DEPTH_LIST_SIZE - 2)) << "more than there is room for";
    LinkDepthList();
    std::vector<int> order = {5, 1, 3};
    order.insert(order.end(), DEPTH_LIST_SIZE - 11, 9);
    order.insert(order.end(), {9, 2, 6, 7, 8, 4});
    EXPECT_EQ(DepthOrder(), order);
    InitDepthList();
    LinkDepthList();
    EXPECT_TRUE(DepthOrder().empty());
}

}  // namespace
