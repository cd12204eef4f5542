// What closes a level, what is left of it, and how a leak is reported.
#include "formats/files.h"
#include "map_builder.h"
#include "support/content_error.h"
#include "world_checks.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace {

// A room of 512 with a hole of 64 x 64 in its east wall, and a shelf before the hole.
MapBuilder RoomWithHole() {
    MapBuilder map;
    map.Box({-16, -16, -16}, {528, 528, 0}).Box({-16, -16, 512}, {528, 528, 528}).Box({-16, -16, 0}, {0, 528, 512});
    map.Box({0, -16, 0}, {512, 0, 512}).Box({0, 512, 0}, {512, 528, 512});
    map.Box({512, -16, 0}, {528, 224, 512}).Box({512, 288, 0}, {528, 528, 512});
    map.Box({512, 224, 0}, {528, 288, 96}).Box({512, 224, 160}, {528, 288, 512});
    map.Box({384, 160, 64}, {400, 352, 256});
    return map.Start("64 64 64");
}

std::set<int> SlotsOf(const WorldFile& world) {
    std::set<int> slots;
    for (const WorldPolygon& polygon : world.polygons)
        slots.insert(polygon.texture);
    return slots;
}

size_t CountSlot(const WorldFile& world, int slot) {
    size_t count = 0;
    for (const WorldPolygon& polygon : world.polygons)
        count += polygon.texture == slot ? 1 : 0;
    return count;
}

bool IsInRoom(const Vec3& p) {
    return p.x >= 0 && p.x <= 512 && p.y >= 0 && p.y <= 512 && p.z >= 0 && p.z <= 512;
}

// Whether the path goes through the rectangle, which lies across one axis.
bool Crosses(const std::vector<Vec3>& path, const Vec3& low, const Vec3& high) {
    int axis = 0;
    while (low[axis] != high[axis])
        ++axis;
    for (size_t i = 1; i < path.size(); ++i) {
        const Vec3& a = path[i - 1];
        const Vec3& b = path[i];
        if ((a[axis] > low[axis]) == (b[axis] > low[axis])) continue;
        const Vec3 crossing = a + (b - a) * ((low[axis] - a[axis]) / (b[axis] - a[axis]));
        if (Box{low, high}.Holds(crossing, 0.01)) return true;
    }
    return false;
}

}  // namespace

TEST(Sealing, ALeakIsReportedWithAWayThroughTheHole) {
    try {
        Compile(RoomWithHole());
        FAIL() << "not noticed";
    } catch (const LeakError& leak) {
        EXPECT_EQ(std::string(leak.what()).find("test.map: the level leaks"), 0U);
        ASSERT_EQ(leak.paths.size(), 1U);
        EXPECT_LT(leak.paths[0].size(), 6U) << "the way is not straightened";
        EXPECT_EQ(leak.paths[0].front(), (Vec3{64, 64, 64}));
        EXPECT_FALSE(IsInRoom(leak.paths[0].back()));
        EXPECT_TRUE(Crosses(leak.paths[0], {512, 224, 96}, {512, 288, 160}));
    }
}

// Three holes of 64 x 64 in the second room, which a doorway of 64 x 128 joins to that of the start.
TEST(Sealing, EachHoleHasItsWay) {
    MapBuilder map;
    map.Box({-16, -16, -16}, {800, 528, 0}).Box({-16, -16, 0}, {0, 528, 512}).Box({0, -16, 0}, {784, 0, 512});
    map.Box({0, 512, 0}, {784, 528, 512});
    map.Box({256, 0, 0}, {272, 224, 512}).Box({256, 288, 0}, {272, 512, 512}).Box({256, 224, 128}, {272, 288, 512});
    map.Box({784, -16, 0}, {800, 528, 96}).Box({784, -16, 160}, {800, 528, 512});
    map.Box({784, -16, 96}, {800, 64, 160}).Box({784, 128, 96}, {800, 384, 160}).Box({784, 448, 96}, {800, 528, 160});
    map.Box({-16, -16, 512}, {400, 528, 528}).Box({464, -16, 512}, {800, 528, 528});
    map.Box({400, -16, 512}, {464, 256, 528}).Box({400, 320, 512}, {464, 528, 528}).Start("64 64 64");
    const std::pair<Vec3, Vec3> holes[] = {
        {{784, 64, 96}, {784, 128, 160}}, {{784, 384, 96}, {784, 448, 160}}, {{400, 256, 512}, {464, 320, 512}}};
    try {
        Compile(map);
        FAIL() << "not noticed";
    } catch (const LeakError& leak) {
        EXPECT_EQ(leak.paths.size(), 3U);
        for (const auto& hole : holes) {
            EXPECT_EQ(std::count_if(leak.paths.begin(), leak.paths.end(),
                                    [&](const auto& path) { return Crosses(path, hole.first, hole.second); }),
                      1);
        }
        const std::string text = leak.what();
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
    }
}

TEST(Sealing, WhatClosesAHoleAndWhatDoesNot) {
    const Corner low{512, 224, 96};
    const Corner high{528, 288, 160};
    for (const char* texture : {"tall", "sky", "water"})
        ExpectRefusal("no error", [&] { Compile(RoomWithHole().Box(low, high, texture)); });
    ExpectRefusal("no error", [&] { Compile(RoomWithHole().BeginEntity("func_group").Box(low, high)); });
    const std::string leaks = "test.map: the level leaks";
    for (const char* texture : {"grate", "clip"})
        ExpectRefusal(leaks, [&] { Compile(RoomWithHole().Box(low, high, texture)); });
    ExpectRefusal(leaks, [&] { Compile(RoomWithHole().BeginEntity("func_detail").Box(low, high)); });
    ExpectRefusal(leaks, [&] { Compile(RoomWithHole().Box(low, {528, 287, 160})); });  // a slit as wide as a hair
}

// In engine units, whatever the scale of the map: 1 map unit is 0.19 or 0.21 of them.
TEST(Sealing, ASlitUnderAFifthOfAUnitIsClosed) {
    const auto room = [](const char* scale) {
        MapBuilder map;
        map.Key("scale", scale).Box({-64, -64, -64}, {4160, 4160, 0}).Box({-64, -64, 4096}, {4160, 4160, 4160});
        map.Box({-64, -64, 0}, {0, 4160, 4096}).Box({0, -64, 0}, {4096, 0, 4096}).Box({0, 4096, 0}, {4096, 4160, 4096});
        map.Box({4096, -64, 0}, {4160, 2000, 4096}).Box({4096, 2001, 0}, {4160, 4160, 4096});  // the slit
        return map.Start("500 500 500");
    };
    const WorldFile world = Compile(room("0.19")).world;
    EXPECT_EQ(Faults(world), Findings{});
    EXPECT_LT(world.polygons.size(), 100U) << "the outside is not dropped";
    ExpectRefusal("the level leaks", [&] { Compile(room("0.21")); });
}

// Two slabs of a roof, almost in one plane: between the plane of each and the face of the other is a space too thin to
// be told from solid.
TEST(Sealing, AFaceBehindASpaceAsThinAsAHairIsKept) {
    MapBuilder map;
    map.Room({0, 0, 0}, {700, 500, 500});
    map.Brush("( 579.1774 346.9301 290 ) ( 167.826 360.4048 290 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 91.198 337.4234 80 ) ( 579.1774 346.9301 160 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 167.826 360.4048 290 ) ( 91.198 337.4234 80 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 254.5466 54.1128 200 ) ( 579.1774 346.9301 290 ) ( 579.1774 346.9301 160 ) wall 0 0 0 1 1\n"
              "( 91.198 337.4234 80 ) ( 254.5466 54.1128 80 ) ( 579.1774 346.9301 160 ) wall 0 0 0 1 1\n"
              "( 579.1774 346.9301 290 ) ( 313.7407 107.9278 290 ) ( 167.826 360.4048 290 ) wall 0 0 0 1 1\n"
              "( 313.7407 107.9278 290 ) ( 254.5466 54.1128 200 ) ( 167.826 360.4048 290 ) wall 0 0 0 1 1\n"
              "( 254.5466 54.1128 200 ) ( 91.198 337.4234 200 ) ( 167.826 360.4048 290 ) wall 0 0 0 1 1\n"
              "( 579.1774 346.9301 290 ) ( 254.5466 54.1128 200 ) ( 313.7407 107.9278 290 ) wall 0 0 0 1 1\n"
              "( 254.5466 54.1128 200 ) ( 91.198 337.4234 80 ) ( 91.198 337.4234 200 ) wall 0 0 0 1 1\n");
    map.Brush("( 513.8035 460.047 290 ) ( 167.826 360.4048 290 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 91.198 337.4234 80 ) ( 513.8035 460.047 160 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 167.826 360.4048 290 ) ( 91.198 337.4234 80 ) ( 167.826 360.4048 100 ) wall 0 0 0 1 1\n"
              "( 513.8035 460.047 290 ) ( 579.1774 346.9301 160 ) ( 579.1774 346.9301 290 ) wall 0 0 0 1 1\n"
              "( 513.8035 460.047 160 ) ( 91.198 337.4234 80 ) ( 579.1774 346.9301 160 ) wall 0 0 0 1 1\n"
              "( 91.198 337.4234 80 ) ( 579.1774 346.9301 290 ) ( 579.1774 346.9301 160 ) wall 0 0 0 1 1\n"
              "( 513.8035 460.047 290 ) ( 579.1774 346.9301 290 ) ( 167.826 360.4048 290 ) wall 0 0 0 1 1\n"
              "( 579.1774 346.9301 290 ) ( 91.198 337.4234 200 ) ( 167.826 360.4048 290 ) wall 0 0 0 1 1\n");
    EXPECT_EQ(OpenEdges(Compile(map.Start("64 64 16")).world), Findings{});
}

TEST(Sealing, SkyFacesAreLeftOutAndTheOutsideIsDropped) {
    const WorldFile world = Compile(RoomWithHole().Box({512, 224, 96}, {528, 288, 160}, "sky")).world;
    EXPECT_EQ(SlotsOf(world), std::set<int>{0});
    for (const WorldPoint& point : world.points) {
        EXPECT_TRUE(IsInRoom({point.position[0], point.position[2], point.position[1]}));
    }
    EXPECT_GE(OpenEdges(world).size(), 4U) << "only the rim of the hole has no neighbour";
}

TEST(Sealing, HollowsThatNobodyReachesAreDropped) {
    MapBuilder map;
    map.Room({0, 0, 0}, {512, 512, 512}).Room({1024, 0, 0}, {1536, 512, 512}, "tall").Start("64 64 64");
    EXPECT_EQ(SlotsOf(Compile(map).world), std::set<int>{0});
}

TEST(Sealing, ClipAndCutoutHideNothingAndAreThereToTouch) {
    const auto room = [] { return MapBuilder().Key("subdivide", "0").Room({0, 0, 0}, {512, 512, 512}); };
    const WorldFile clip = Compile(room().Box({200, 200, 0}, {264, 264, 64}, "clip").Start("64 64 64")).world;
    EXPECT_EQ(CountSlot(clip, 6), 5U);
    EXPECT_EQ(CountSlot(clip, 0), 6U) << "an invisible brush cuts what is seen";
    const WorldFile grate = Compile(room().Box({200, 200, 0}, {264, 264, 64}, "grate").Start("64 64 64")).world;
    EXPECT_EQ(Faults(grate), Findings{});
    // The floor below the grate is still there: it shows through the holes.
    EXPECT_EQ(OpenEdges(grate).size(), 4U) << "only the lower rim of the grate has no neighbour";
}

TEST(Sealing, ALeakLeavesThePathForTheEditorAndNothingElse) {
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "leak";
    std::filesystem::remove_all(folder);
    const auto compile = [&](const MapBuilder& map) {
        const std::string text = map.Text();
        WriteWholeFile(folder / "hole.map", {text.begin(), text.end()});
        WriteMaterialList(folder / "textures.list", {TestMaterials()});
        CompileToFiles({folder / "hole.map", folder / "textures.list", folder / "out", 0});
    };
    ExpectRefusal("the editor shows it from " + (folder / "hole.pts").string(), [&] { compile(RoomWithHole()); });
    ASSERT_TRUE(std::filesystem::exists(folder / "hole.pts")) << "beside the map, where editors look for it";
    std::ifstream path(folder / "hole.pts");
    Vec3 first;
    path >> first.x >> first.y >> first.z;
    EXPECT_EQ(first, (Vec3{64, 64, 64}));
    EXPECT_FALSE(std::filesystem::exists(folder / "out"));

    compile(RoomWithHole().Box({512, 224, 96}, {528, 288, 160}));
    EXPECT_FALSE(std::filesystem::exists(folder / "hole.pts"));
    EXPECT_GT(ReadWorldFile(folder / "out/hole.bgm").polygons.size(), 10U);
    EXPECT_EQ(ReadLightSlotFile(folder / "out/lights.alt").slots.size(), 4U);
    EXPECT_EQ(ReadLightMapFile(folder / "out/lights.lmp").pointLight.size(),
              ReadWorldFile(folder / "out/hole.bgm").points.size());
}
