// The list of leaves that RenderWorld draws.
#include "world/draw/render_world.h"

#include "character/character_tables.h"
#include "platform/timer.h"
#include "render/render_tables.h"
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

Corners Square(Vec3 centre, float half) {  // visible from -z
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
        RenderWorld();
        return {WorldGeometry.renderList, WorldGeometry.renderList + RenderListCount};
    }

    TinyWorld world_;
    std::vector<int> leavesWithCharacter_;
};

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
    PublishNearAndFar(Square({-410, 0, 400}, 30), Square({620, 0, 600}, 30));  // both lie across the sides of the view
    EXPECT_EQ(Render(), (List{1, 0}));
    const auto negate = [](auto& record) {
        const Vec3 half = record.halfExtents;
        record.halfExtents = {-half.x, -half.y, -half.z};
    };
    negate(WorldGeometry.nodes[0]);
    std::for_each_n(WorldGeometry.leaves, 2, negate);
    EXPECT_EQ(Render(), (List{1, 0}));
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
