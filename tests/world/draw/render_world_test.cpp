// The list of leaves that RenderWorld draws, and the calls it makes of it.
#include "world/draw/render_world.h"

#include "character/character_tables.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "support/pipeline_spy.h"
#include "support/tiny_world.h"
#include "support/view.h"
#include "world/bsp.h"
#include "world/world_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>

namespace {

using List = std::vector<int32_t>;

Corners Square(Vec3 centre, float half) {  // seen from -z
    return FacingSquare(centre, {0, 0, -1}, half);
}

class RenderedWorld : public testing::Test {
protected:
    void SetUp() override {
        ScreenAspect = ProjectionScaleX = ProjectionScaleY = 1.0f;
        FarDistance = 5000.0f;
        FogSwitch = FOG_SWITCH_ON;
        PlayerActor = {};
        FrameCount = 1;
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
        ++FrameCount;
        for (const int leaf : leavesWithCharacter_) {
            WorldGeometry.leaves[leaf].frameStamp = FrameCount;
        }
        PipelineLog.clear();
        RenderWorld();
        return {WorldGeometry.renderList, WorldGeometry.renderList + RenderListCount};
    }

    TinyWorld world_;
    std::vector<int> leavesWithCharacter_;
};

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

TEST_F(RenderedWorld, ABoxIsAsLargeWhateverTheSignsOfItsHalfExtents) {
    PublishNearAndFar(Square({-410, 0, 400}, 30), Square({620, 0, 600}, 30));  // across the sides of the view
    EXPECT_EQ(Render(), (List{1, 0}));
    const auto negate = [](auto& record) {
        const Vec3 half = record.halfExtents;
        record.halfExtents = {-half.x, -half.y, -half.z};
    };
    negate(WorldGeometry.nodes[0]);
    std::for_each_n(WorldGeometry.leaves, 2, negate);
    EXPECT_EQ(Render(), (List{1, 0}));
}

TEST_F(RenderedWorld, ClipsWhatCrossesASideAndLeavesOutWhatLiesBeyondTheFarDistance) {
    const auto drawn = [this] {
        Render();
        return PipelineLog;
    };
    const Corners deep = {{-10, -10, 590}, {10, -10, 590}, {10, 10, 610}, {-10, 10, 610}};
    PublishNearAndFar(Square({-395, 0, 400}, 10), deep);
    EXPECT_EQ(drawn(), "W1 X0/2");
    FarDistance = 595.0f;  // nearer than the middle of the far leaf
    EXPECT_EQ(drawn(), "W1 X0/2");
    FarDistance = 589.0f;
    EXPECT_EQ(drawn(), "X0/2");
    WorldGeometry.leaves[0].radiusRoot2 = WorldGeometry.leaves[0].radiusAspect = 0;  // as if it lay inside the view
    EXPECT_EQ(drawn(), "W0");
    FogSwitch = 0;
    EXPECT_EQ(drawn(), "O1/1 O0/0") << "in the colour of the leaf's number";
}

TEST_F(RenderedWorld, SeesTheFootOfATallWallAtTheUpperEdgeOfAWideView) {
    ScreenAspect = ProjectionScaleX = 2.0f;
    LookFrom({0, 0, 0}, 0, 0);
    PublishNearAndFar({{-1, 195, 400}, {1, 195, 400}, {1, 315, 400}, {-1, 315, 400}}, Square({0, 0, 600}, 10));
    EXPECT_EQ(Render(), (List{~1, 0}));
}

TEST_F(RenderedWorld, DrawsTheCharacterInALeafFromFarToNear) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    uint16_t polygons[2];
    polygons[0] = static_cast<uint16_t>(
        AppendPolygon({{0, 0, 300, 0, 0, 0}, {9, 0, 300, 0, 0, 0}, {9, 9, 300, 0, 0, 0}, {0, 9, 300, 0, 0, 0}}));
    polygons[1] =
        static_cast<uint16_t>(AppendPolygon({{0, 0, 350, 0, 0, 0}, {9, 0, 350, 0, 0, 0}, {9, 9, 350, 0, 0, 0}}));
    LeafBins[0] = {polygons, 2};
    leavesWithCharacter_ = {0};
    Render();
    EXPECT_EQ(PipelineLog, "W1 W0 D3 D2");
}

TEST_F(RenderedWorld, SurvivesEyesAndBoxesBeyondAllNumbers) {
    PublishNearAndFar(Square({0, 0, 400}, 10), Square({0, 0, 600}, 10));
    WorldGeometry.leaves[1].centre = {3e38f, -3e38f, 3e38f};
    for (const float far : {0.0f, 1.0f, 3e38f}) {
        FarDistance = far;
        for (const Vec3 eye : {Vec3{-3e38f, 3e38f, -3e38f}, Vec3{1e10f, 0, -1e10f}, Vec3{0, 0, 0}}) {
            LookFrom(eye, 20, 30);
            const List list = Render();
            EXPECT_EQ(std::set<int32_t>(list.begin(), list.end()).size(), list.size()) << "a leaf is listed twice";
        }
    }
}

}  // namespace
