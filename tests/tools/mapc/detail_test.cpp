// What the records of a world hold: texture coordinates, placement, light.
#include "map_builder.h"
#include "world_checks.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>

namespace {

using Texel = std::pair<float, float>;

// u and v of the corners of the polygons that use a slot, by the corner's position.
std::map<std::array<float, 3>, Texel> CornersOfSlot(const WorldFile& world, int slot) {
    std::map<std::array<float, 3>, Texel> corners;
    for (const WorldPolygon& polygon : world.polygons) {
        if (polygon.texture != slot) continue;
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            const WorldCorner& corner = world.corners[polygon.firstCorner + k];
            corners[world.points[corner.point].position] = {corner.u, corner.v};
        }
    }
    return corners;
}

MapBuilder RoomWithFace(const std::string& floorFace) {
    MapBuilder map;
    const std::string sides = "( 0 0 -16 ) ( 0 1 -16 ) ( 0 0 -15 ) wall 0 0 0 2 2\n"
                              "( 512 0 -16 ) ( 512 0 -15 ) ( 512 1 -16 ) wall 0 0 0 2 2\n"
                              "( 0 0 -16 ) ( 0 0 -15 ) ( 1 0 -16 ) wall 0 0 0 2 2\n"
                              "( 0 512 -16 ) ( 1 512 -16 ) ( 0 512 -15 ) wall 0 0 0 2 2\n"
                              "( 0 0 -16 ) ( 1 0 -16 ) ( 0 1 -16 ) wall 0 0 0 2 2\n";
    map.Key("subdivide", "0").Brush(sides + "( 0 0 0 ) ( 0 1 0 ) ( 1 0 0 ) " + floorFace + "\n");
    return map.Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64");
}

}  // namespace

// The floor spans 512 units, 256 texels at scale 2, four repeats of 64: it is moved so that its middle is near 0.
TEST(TextureCoordinates, AFloorIsPaintedFromTheOriginNorthUp) {
    const auto corners = CornersOfSlot(Compile(RoomWithFace("floor 0 0 0 2 2")).world, 1);
    EXPECT_EQ(corners.at({0, 0, 0}), Texel(-128 * 256, 128 * 256));
    EXPECT_EQ(corners.at({512, 0, 0}), Texel(128 * 256, 128 * 256));
    EXPECT_EQ(corners.at({0, 0, 512}), Texel(-128 * 256, -128 * 256));
}

TEST(TextureCoordinates, OffsetsScalesAndRotation) {
    const auto at = [](const std::string& face) {
        return CornersOfSlot(Compile(RoomWithFace("floor " + face)).world, 1).at({512, 0, 512});
    };
    EXPECT_EQ(at("8 0 0 2 2"), Texel(136 * 256, -128 * 256));
    EXPECT_EQ(at("0 0 0 0 0"), at("0 0 0 2 2")) << "no scale means two units a texel";
    EXPECT_EQ(at("0 0 0 4 2"), Texel(64 * 256, -128 * 256));
    EXPECT_EQ(at("0 0 90 2 2"), Texel(128 * 256, 128 * 256)) << "u runs north, v east";
    EXPECT_EQ(at("[ 0 1 0 4 ] [ 1 0 0 0 ] 0 2 2"), Texel(132 * 256, 128 * 256));
    EXPECT_EQ(at("[ 0 1 0 68 ] [ 1 0 0 0 ] 0 2 2"), Texel(132 * 256, 128 * 256)) << "whole repeats do not count";
}

TEST(TextureCoordinates, APictureThatFitsStaysHalfATexelInside) {
    const auto corners = CornersOfSlot(Compile(RoomWithFace("floor 0 0 0 8 8")).world, 1);
    EXPECT_EQ(corners.at({0, 0, 512}), Texel(128, 128));
    EXPECT_EQ(corners.at({512, 0, 0}), Texel(64 * 256 - 128, 64 * 256 - 128));
}

TEST(Placement, TheStartComesToTheLevelsStartAndLooksAlongZ) {
    struct Case {
        int angle;
        Corner ahead;  // map coordinates of a block that the player looks at from (500, 500)
    };
    for (const auto& [angle, ahead] :
         {Case{0, {800, 480, 0}}, Case{90, {480, 800, 0}}, Case{180, {160, 480, 0}}, Case{270, {480, 160, 0}}}) {
        MapBuilder map;
        map.Key("subdivide", "0").Room({0, 0, 0}, {1000, 1000, 512}).Box({450, 450, 0}, {550, 550, 24});
        map.Box(ahead, {ahead[0] + 40, ahead[1] + 40, 100}).Start("500 500 200", angle);
        const WorldFile world = Compile(map, 3).world;
        EXPECT_EQ(FloorAt(world, 223, -211, 500), 376) << "on the block, wherever above it the start hangs";
        EXPECT_EQ(FloorAt(world, 223, -211 + 320, 500), 376 - 24 + 100) << angle;
        EXPECT_EQ(Faults(world), Findings{});
    }
}

TEST(Placement, ScaleCountsAroundTheMapsOrigin) {
    MapBuilder map;
    map.Key("scale", "2").Room({0, 0, 0}, {256, 256, 256}).Start("64 64 64");
    const CompiledLevel level = Compile(map);
    EXPECT_EQ(FloorAt(level.world, 500, 500), 0);
    EXPECT_LT(FloorAt(level.world, 520, 500), -1e9);
    EXPECT_EQ(level.placement.ToMap(level.placement.ToEngine({1, 2, 3})), (Vec3{1, 2, 3}));
}

TEST(CornerLight, FacesKeepFewCornersBesideCrowdedEdges) {
    MapBuilder map;
    map.Key("subdivide", "0").Room({0, 0, 0}, {1024, 1024, 512}).Start("64 64 64").Light("512 512 256");
    map.BeginEntity("func_group", "\"corner_light\" \"1\"\n").Box({0, 0, 0}, {1024, 1024, 8}, "floor");
    map.BeginEntity("func_group");
    for (int i = 0; i < 12; ++i)
        map.Box({32 + i * 80, 1000, 0}, {64 + i * 80, 1024, 64}, i % 2 ? "wall" : "tall");
    const WorldFile world = Compile(map).world;
    EXPECT_EQ(OpenEdges(world), Findings{});
    EXPECT_EQ(Faults(world), Findings{}) << "more than eight corners, or three of them on a line";
}

TEST(Leaves, PointsAreSharedWithinASurfaceOnly) {
    MapBuilder map;
    map.Key("light_tolerance", "0").Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64").Light("256 256 256");
    const WorldFile world = Compile(map).world;
    // Each side is cut into four, three by three points; the walls not across their height where a floor is near.
    EXPECT_EQ(world.points.size(), 2 * 9U + 4 * 9U);
    std::map<std::array<float, 3>, int> atPlace;
    for (const WorldPoint& point : world.points)
        ++atPlace[point.position];
    EXPECT_EQ((atPlace.at({0, 0, 0})), 3);
    EXPECT_EQ((atPlace.at({256, 0, 256})), 1);
}
