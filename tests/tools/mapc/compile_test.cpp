#include "map_builder.h"
#include "world_checks.h"

#include <gtest/gtest.h>

namespace {

constexpr int RAYS = 3000;

// Two rooms joined by a doorway, a pillar, a crate and a low step.
MapBuilder TwoRooms() {
    MapBuilder map;
    map.Box({-256, -256, -16}, {1280, 256, 0}, "floor").Box({-256, -256, 512}, {1280, 256, 528}, "ceiling");
    map.Box({-272, -256, 0}, {-256, 256, 512}).Box({1280, -256, 0}, {1296, 256, 512});
    map.Box({-256, -272, 0}, {1280, -256, 512}).Box({-256, 256, 0}, {1280, 272, 512});
    map.Box({480, -256, 0}, {544, -64, 512}).Box({480, 64, 0}, {544, 256, 512}).Box({480, -64, 256}, {544, 64, 512});
    map.TurnedBox({100, 60, 0}, {164, 124, 512}).Box({700, 0, 0}, {764, 64, 80}).Box({900, -256, 0}, {1000, 256, 40});
    return map.Start("0 0 100").Light("200 0 300");
}

void ExpectSound(const WorldFile& world) {
    EXPECT_EQ(OpenEdges(world), Findings{});
    EXPECT_EQ(TurnedPolygons(world), Findings{});
    EXPECT_EQ(OrderedLeaves(world), Findings{});
    EXPECT_EQ(MisplacedPolygons(world), Findings{});
    EXPECT_EQ(PaintingFaults(world, RAYS), Findings{});
}

}  // namespace

TEST(Compile, TwoRoomsAreClosedOrderedAndPaintedRightFromEverywhere) {
    const CompiledLevel level = Compile(TwoRooms());
    ExpectSound(level.world);
    EXPECT_GT(level.world.polygons.size(), 40U);
}
