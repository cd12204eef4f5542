// The list of leaves that RenderWorld draws, and the calls it makes of it.
#include "world/draw/render_world.h"

#include "character/character_tables.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "support/box_grid.h"
#include "support/painters_order.h"
#include "support/pipeline_spy.h"
#include "support/view.h"
#include "world/bsp.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>

namespace {

using List = std::vector<int32_t>;

Corners Square(Vec3 centre, float half) {  // seen from -z
    return FacingSquare(centre, {0, 0, -1}, half);
}

Corners Reversed(Corners corners) {
    std::reverse(corners.begin(), corners.end());
    return corners;
}

class RenderedWorld : public testing::Test {
protected:
    void SetUp() override {
        ScreenAspect = ProjectionScaleX = ProjectionScaleY = 1.0f;
        FarDistance = 5000.0f;
        FogSwitch = FOG_SWITCH_ON;
        PlayerActor = {};
        FrameCount = 1;
        PipelineCalls.clear();
        LookFrom({0, 0, 0}, 0, 0);
    }

    // Leaf 0 on the near side of z = 500, leaf 1 beyond it.
    void PublishNearAndFar(const Corners& nearPolygon, const Corners& farPolygon) {
        const int16_t nearLeaf = world_.AddLeaf({nearPolygon});
        world_.AddNode({0, 0, -1, 500}, nearLeaf, world_.AddLeaf({farPolygon}));
        world_.Publish();
        GenerateNodeRadii();
    }

    List Render() {
        PipelineCalls.clear();
        ++FrameCount;
        for (const int leaf : leavesWithCharacter_) {
            WorldGeometry.leaves[leaf].frameStamp = FrameCount;
        }
        RenderWorld();
        return {WorldGeometry.renderList, WorldGeometry.renderList + RenderListCount};
    }

    TinyWorld world_;
    std::vector<int> leavesWithCharacter_;
};

TEST_F(RenderedWorld, DrawsTheFarSideOfEachPlaneFirst) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    EXPECT_EQ(Render(), (List{~1, ~0}));
    EXPECT_EQ(PipelineLog(), "d1 d0");
    LookFrom({0, 0, 500}, 0, 0);  // on the plane: the front child counts as the eye's side
    EXPECT_EQ(Render(), (List{~1}));
    LookFrom({0, 0, 1000}, 0, 180);
    EXPECT_EQ(Render(), (List{~0, ~1}));
    EXPECT_EQ(PipelineLog(), "") << "both polygons turn their back to the eye";
}

TEST_F(RenderedWorld, ClipsOnlyPolygonsOfCrossingLeavesThatCrossASide) {
    PublishNearAndFar(Square({380, 0, 400}, 40), Square({0, 0, 600}, 10));
    EXPECT_EQ(Render(), (List{~1, 0}));
    EXPECT_EQ(PipelineLog(), "d1 c0/1");
    FarDistance = 590.0f;  // wholly beyond it: rejected by its outcodes
    EXPECT_EQ(Render(), (List{~1, 0}));
    EXPECT_EQ(PipelineLog(), "c0/1");
}

TEST_F(RenderedWorld, NeverClipsAgainstTheFarDistance) {
    const Corners floor = {{-10, -20, 700}, {10, -20, 700}, {10, -20, 550}, {-10, -20, 550}};
    PublishNearAndFar(Square({0, 0, 400}, 10), Reversed(floor));
    FarDistance = 600.0f;
    Render();
    EXPECT_EQ(PipelineLog(), "d1 d0");
}

TEST_F(RenderedWorld, PutsTheCharacterBehindAWallItStandsBehind) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    leavesWithCharacter_ = {0};
    PlayerActor.position = {0, 0, 450};
    EXPECT_EQ(Render(), (List{~1, CHARACTER_ENTRY, ~0}));
    PlayerActor.position = {0, 0, 400};  // on the plane: in front
    EXPECT_EQ(Render(), (List{~1, ~0, CHARACTER_ENTRY}));
    PlayerActor.position = {0, 0, 200000};  // too far behind any plane to tell
    EXPECT_EQ(Render(), (List{~1, ~0, CHARACTER_ENTRY}));
    PlayerActor.position = {0, 0, 450};
    WorldGeometry.planes[WorldGeometry.polygons[0].plane] = {0, 0, -1, 400};  // the wall turns its back to the eye
    EXPECT_EQ(Render(), (List{~1, ~0, CHARACTER_ENTRY}));
}

TEST_F(RenderedWorld, ListsTheCharacterOfCulledLeavesToo) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    leavesWithCharacter_ = {0};
    LookFrom({0, 0, 0}, 0, 180);
    EXPECT_EQ(Render(), (List{CHARACTER_ENTRY}));
    leavesWithCharacter_ = {0, 1};
    EXPECT_EQ(Render(), (List{CHARACTER_ENTRY + 1, CHARACTER_ENTRY}));
    leavesWithCharacter_ = {};
    EXPECT_EQ(Render(), (List{})) << "stamps of the last frame";
}

TEST_F(RenderedWorld, IsOutlinedWholeWithTheSwitchOff) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({9000, 0, 600}, 10));
    FogSwitch = 0;
    LookFrom({0, 0, 0}, 0, 180);
    EXPECT_EQ(Render(), (List{}));
    EXPECT_EQ(PipelineLog(), "o1/1 o0");  // colour = leaf number
}

TEST_F(RenderedWorld, SurvivesEyesAndBoxesBeyondAllNumbers) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    WorldGeometry.leaves[1].centre = {3e38f, -3e38f, 3e38f};
    for (const float far : {0.0f, 1.0f, 3e38f}) {
        FarDistance = far;
        for (const Vec3 eye : {Vec3{-3e38f, 3e38f, -3e38f}, Vec3{1e10f, 0, -1e10f}, Vec3{0, 0, 0}}) {
            LookFrom(eye, 20, 30);
            EXPECT_LE(Render().size(), 4u);
        }
    }
}

// Every leaf at most once, every marked leaf's character exactly once and right beside a leaf that is listed.
TEST_F(RenderedWorld, ListsNothingTwice) {
    PublishBoxGrid(world_, 7, 200.0f, 3);
    GenerateNodeRadii();
    uint32_t random = 1;
    for (int view = 0; view < 60; ++view) {
        leavesWithCharacter_.clear();
        for (uint32_t i = 0; i < WorldGeometry.leafCount; ++i) {
            random = random * 1664525 + 1013904223;
            if (random >> 30 == 0) leavesWithCharacter_.push_back(static_cast<int>(i));
        }
        LookFrom({static_cast<float>(random % 1400) - 700, 100, -50}, 20, static_cast<float>(view * 37));
        const List list = Render();
        std::map<int32_t, std::vector<size_t>> places[2];  // of leaves, of characters
        for (size_t i = 0; i < list.size(); ++i) {
            const bool isCharacter = list[i] >= CHARACTER_ENTRY;
            const int32_t leaf = isCharacter ? list[i] - CHARACTER_ENTRY : list[i] < 0 ? ~list[i] : list[i];
            places[isCharacter][leaf].push_back(i);
        }
        ASSERT_EQ(places[1].size(), leavesWithCharacter_.size());
        for (const auto& [leaf, at] : places[0])
            ASSERT_EQ(at.size(), 1u) << "leaf " << leaf;
        for (const auto& [leaf, at] : places[1]) {
            ASSERT_EQ(at.size(), 1u) << "character in leaf " << leaf;
            if (places[0].count(leaf) == 0) continue;
            const size_t leafAt = places[0][leaf][0];
            ASSERT_EQ(std::max(leafAt, at[0]) - std::min(leafAt, at[0]), 1u) << "leaf " << leaf;
        }
    }
}

TEST_F(RenderedWorld, ShowsTheNearestPolygonOnEveryLineOfSight) {
    std::vector<Vec3> eyes;
    for (int i = 0; i < 40; ++i) {
        eyes.push_back({static_cast<float>(i * 31 % 1100 - 550), static_cast<float>(i * 77 % 1100 - 550),
                        static_cast<float>(i * 53 % 1100 - 550)});
    }
    PublishBoxGrid(world_, 8, 150.0f, 11);
    for (const float aspect : {1.0f, 4.0f / 3.0f}) {
        ScreenAspect = aspect;
        ProjectionScaleY = 1.0f / aspect;
        GenerateNodeRadii();
        const PaintersOrderReport report = CheckPaintersOrder(eyes, 50, 5);
        EXPECT_GT(report.crossings, 3000);
        EXPECT_EQ(report.faults, std::vector<std::string>{});
    }
    // The checker must be able to find a fault: swap the children of the root.
    BspNode& root = WorldGeometry.nodes[0];
    const int16_t front = root.frontChild;
    root.frontChild = root.backChild;
    root.backChild = front;
    EXPECT_FALSE(CheckPaintersOrder(eyes, 50, 5).faults.empty());
}

}  // namespace
