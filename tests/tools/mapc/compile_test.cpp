// Whole compilations: the rules that every world keeps, and what is refused.
#include "map_builder.h"
#include "support/content_error.h"
#include "world_checks.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

// Two rooms joined by a doorway, a pillar, a crate, a low step and a lamp.
MapBuilder TwoRooms() {
    MapBuilder map;
    map.Box({-256, -256, -16}, {1280, 256, 0}, "floor").Box({-256, -256, 512}, {1280, 256, 528}, "ceiling");
    map.Box({-272, -256, 0}, {-256, 256, 512}).Box({1280, -256, 0}, {1296, 256, 512});
    map.Box({-256, -272, 0}, {1280, -256, 512}).Box({-256, 256, 0}, {1280, 272, 512});
    map.Box({480, -256, 0}, {544, -64, 512}).Box({480, 64, 0}, {544, 256, 512}).Box({480, -64, 256}, {544, 64, 512});
    map.TurnedBox({100, 60, 0}, {164, 124, 512}).Box({700, 0, 0}, {764, 64, 80}).Box({900, -256, 0}, {1000, 256, 40});
    return map.Start("0 0 100").Light("200 0 300");
}

MapBuilder OneRoom(const std::string& start = "64 64 64") {
    return MapBuilder().Room({0, 0, 0}, {512, 512, 512}).Start(start);
}

void ExpectSound(const WorldFile& world) {
    EXPECT_EQ(Faults(world), Findings{});
    EXPECT_EQ(OpenEdges(world), Findings{});
    EXPECT_EQ(FalseSteps(world), Findings{});
}

}  // namespace

TEST(Compile, BrushesThatRunThroughEachOtherAtOddAnglesAreSoundAtEveryScale) {
    for (const char* scale : {"1", "3"}) {
        MapBuilder map;
        map.Key("scale", scale);
        map.Room({0, 0, 0}, {1536, 1536, 768}).Start("64 64 600");
        for (int i = 0; i < 12; ++i) {
            map.Wedge(200 + i * 83 % 1000, 200 + i * 197 % 1000, 150 + i * 31 % 200);
            map.TurnedBox({150 + i * 151 % 1100, 150 + i * 89 % 1100, 0},
                          {260 + i * 151 % 1100, 260 + i * 89 % 1100, 90});
        }
        SCOPED_TRACE(scale);
        ExpectSound(Compile(map).world);
    }
}

TEST(Compile, OneConvexRoomStillGetsANode) {
    const CompiledLevel level = Compile(OneRoom().Key("subdivide", "0"));
    EXPECT_EQ(level.world.nodes.size(), 1U);
    EXPECT_EQ(level.world.polygons.size(), 6U);
    EXPECT_EQ(level.world.points.size(), 24U);
    ExpectSound(level.world);
}

struct Extent {
    float low[3] = {1e9F, 1e9F, 1e9F}, high[3] = {-1e9F, -1e9F, -1e9F};
};

Extent ExtentOf(const WorldFile& world, const WorldPolygon& polygon) {
    Extent extent;
    for (size_t k = 0; k < polygon.cornerCount; ++k) {
        const WorldVector& p = world.points[world.corners[polygon.firstCorner + k].point].position;
        for (size_t axis = 0; axis < 3; ++axis) {
            extent.low[axis] = std::min(extent.low[axis], p[axis]);
            extent.high[axis] = std::max(extent.high[axis], p[axis]);
        }
    }
    return extent;
}

// Whether the step's riser comes after a side of the pillar that stands on the step, in the leaf of the riser.
bool RiserComesAfterPillar(const WorldFile& world) {
    for (const WorldLeaf& leaf : world.leaves) {
        bool pillarMet = false;
        for (size_t i = leaf.firstPolygon; i < size_t{leaf.firstPolygon} + leaf.polygonCount; ++i) {
            const Extent extent = ExtentOf(world, world.polygons[i]);
            if (extent.low[2] == 100 && extent.high[2] == 100 && extent.high[1] > 200) pillarMet = true;
            const bool isRiser = extent.low[0] == 900 && extent.high[0] == 900 && extent.high[1] == 40;
            if (isRiser && extent.low[2] < 100 && extent.high[2] >= 100) return pillarMet;
        }
    }
    throw std::runtime_error("no riser");
}

TEST(Compile, GuardsPutATallWallBeforeTheLedgeBesideItAndAGroundBelowEverything) {
    MapBuilder map = TwoRooms();
    map.Box({900, 100, 40}, {980, 160, 300});
    const CompiledLevel bare = Compile(map);
    EXPECT_FALSE(RiserComesAfterPillar(bare.world));
    EXPECT_FALSE(bare.places.net);
    map.guards = "net walls";
    const CompiledLevel guarded = Compile(map);
    EXPECT_TRUE(RiserComesAfterPillar(guarded.world));
    EXPECT_EQ(guarded.places.net, -72);
}

TEST(Compile, WithGuardsAFloorGoesOnBelowWhatStandsOnIt) {
    MapBuilder map = TwoRooms();
    map.Box({900, 100, 0}, {980, 160, 300});
    const auto hasFloorBelow = [&] {
        const WorldFile world = Compile(map).world;
        return std::any_of(world.polygons.begin(), world.polygons.end(), [&](const WorldPolygon& polygon) {
            const Extent extent = ExtentOf(world, polygon);
            return extent.low[1] == 0 && extent.high[1] == 0 && extent.low[0] <= 900 && extent.high[0] >= 980 &&
                   extent.low[2] <= 100 && extent.high[2] >= 160;
        });
    };
    EXPECT_FALSE(hasFloorBelow());
    map.guards = "floors";
    EXPECT_TRUE(hasFloorBelow());
}

// A player whose sphere touches a slope of two to one stands on the footing clear of it.
TEST(Compile, AFootingLiesClearOfWhatSlopes) {
    MapBuilder map = TwoRooms();
    map.Brush("( 900 0 0 ) ( 800 0 200 ) ( 900 1 0 ) wall 0 0 0 2 2\n"
              "( 800 0 0 ) ( 800 1 0 ) ( 800 0 1 ) wall 0 0 0 2 2\n"
              "( 800 0 0 ) ( 801 0 0 ) ( 800 1 0 ) wall 0 0 0 2 2\n"
              "( 800 50 0 ) ( 800 50 1 ) ( 801 50 0 ) wall 0 0 0 2 2\n"
              "( 800 250 0 ) ( 801 250 0 ) ( 800 250 1 ) wall 0 0 0 2 2\n");
    map.BeginEntity("info_footing", "\"origin\" \"868 150 193\"\n");  // the sphere's middle is 16.1 from the slope
    const WorldFile world = Compile(map).world;
    const auto isFooting = [&](const WorldPolygon& polygon) {
        const Extent extent = ExtentOf(world, polygon);
        return extent.low[0] == 856 && extent.high[0] == 880 && extent.low[1] == extent.high[1] && extent.low[1] == 88;
    };
    EXPECT_EQ(std::count_if(world.polygons.begin(), world.polygons.end(), isFooting), 1);
}

TEST(Compile, BothFormsOfAMapGiveTheSameBytes) {
    MapBuilder valve = TwoRooms();
    MapBuilder plain = TwoRooms();
    plain.Box({1100, 0, 0}, {1150, 50, 64});
    valve.valve = true;
    valve.Box({1100, 0, 0}, {1150, 50, 64});
    EXPECT_NE(valve.Text(), plain.Text());
    EXPECT_EQ(EncodeWorld(Compile(valve).world), EncodeWorld(Compile(plain).world));
}

TEST(Compile, FlushBrushesPaintedAlikeBecomeOneFace) {
    const auto tiled = [](const std::string& second) {
        MapBuilder map;
        map.Key("subdivide", "0").Box({0, 0, -16}, {256, 512, 0}, "floor").Box({256, 0, -16}, {512, 512, 0}, second);
        return map.Room({0, 0, 0}, {512, 512, 512}, "wall").Start("64 64 64");
    };
    // The room has a floor of its own, which yields to those that come before it.
    EXPECT_EQ(Compile(tiled("floor")).world.polygons.size(), 6U);
    EXPECT_EQ(Compile(tiled("tall")).world.polygons.size(), 7U);
}

TEST(Compile, FacesBehindAreNotCutByWhatStandsBeforeThem) {
    const auto polygonsOf = [](const char* facesBehind) {
        MapBuilder map;
        map.Key("subdivide", "0").Key("faces_behind", facesBehind).Room({0, 0, 0}, {1024, 1024, 512});
        return Compile(map.Box({300, 300, 0}, {400, 400, 100}).Start("64 64 64")).world.polygons.size();
    };
    EXPECT_GT(polygonsOf("0"), 14U);
    EXPECT_EQ(polygonsOf("2"), 14U)
        << "six of the room, whose floor has four parts around the box, and five of the box";
    EXPECT_EQ(polygonsOf("3"), 11U) << "the floor stays whole below the box";
}

TEST(Compile, OfTwoFacesInOnePlaceTheEarlierStays) {
    MapBuilder map;
    map.Key("subdivide", "0").Room({0, 0, 0}, {512, 512, 512}).Box({0, 0, -8}, {256, 512, 0}, "tall");
    for (const WorldPolygon& polygon : Compile(map.Start("64 64 64")).world.polygons)
        EXPECT_EQ(polygon.texture, 0);
}

TEST(Compile, MapsThatCannotBecomeLevelsAreRefused) {
    const std::string flat = "( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 0 0 0 1 1\n";
    const std::string open =
        "( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 0 0 0 1 1\n( 9 0 0 ) ( 9 0 1 ) ( 9 1 0 ) wall 0 0 0 1 1\n";
    const std::pair<MapBuilder, const char*> cases[] = {
        {OneRoom().Box({100, 100, 0}, {164, 164, 64}, "marble"), "the texture \"marble\" is not in the list"},
        {OneRoom().Box({100, 100, 0}, {164, 164, 64}, "skin"), "the texture \"skin\" is in slot 93"},
        {OneRoom().Brush(flat), "the brush has no volume"},
        {OneRoom().Brush(open), "the brush has no volume"},
        {OneRoom().Brush("( 0 0 0 ) ( 1 1 1 ) ( 2 2 2 ) wall 0 0 0 1 1\n"), "three points of the face lie on a line"},
        {OneRoom().Box({100, 100, 0}, {164, 164, 40000}), "a point lies beyond 32768 units"},
        {OneRoom().Key("far_distance", "300"), "test.map:3: far_distance is 300, less than the level's 887"},
        {OneRoom().Start("70 70 70"), "a second info_player_start"},
        {MapBuilder().Room({0, 0, 0}, {512, 512, 512}), "there is no info_player_start"},
        {MapBuilder().Room({0, 0, 0}, {512, 512, 512}).Start("600 0 0"), "there is no floor below info_player_start"},
        {OneRoom("64 64 99").Box({0, 0, 80}, {512, 512, 96}, "sky"), "info_player_start is above the sky"},
        {MapBuilder().Room({0, 0, 0}, {512, 512, 512}).Start("-8 64 64"), "is inside the brush of test.map:"},
        {MapBuilder().Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64", 45), "looks along 45 degrees"},
        {OneRoom().BeginEntity("func_door").Box({100, 100, 0}, {164, 164, 64}), "unknown entity func_door"},
        {OneRoom().BeginEntity("info_note").Box({100, 100, 0}, {164, 164, 64}), "a info_note cannot have brushes"},
    };
    for (const auto& row : cases)
        ExpectRefusal(row.second, [&] { Compile(row.first); });
}

TEST(Compile, TooManyPolygonsInReachOfThePlayerAreRefusedWithThePlace) {
    MapBuilder map;
    map.Key("subdivide", "0").Room({0, 0, 0}, {2048, 2048, 512}).Start("64 64 64");
    for (int i = 0; i < 49; ++i) {
        const int x = 1000 + i % 7 * 32;
        const int y = 1000 + i / 7 * 32;
        map.TurnedBox({x, y, 0}, {x + 24, y + 24, 16});
    }
    ExpectRefusal("polygons at once, at most 150", [&] { Compile(map); });
    ExpectRefusal("a player at (1", [&] { Compile(map); });
    // The floor is in many pieces between the boxes, of which five sides are seen.
    ExpectRefusal("50 brushes, the most polygons from test.map:4 (139), test.map:52 (5)", [&] { Compile(map); });
}

TEST(Compile, ALevelThatIsTooLargeWithItsSkirtsKeepsSomeOfThem) {
    MapBuilder map;
    map.skirts = true;
    map.Room({0, 0, 0}, {8000, 8000, 512}).Start("64 64 64");
    for (int i = 0; i < 900; ++i) {
        const int x = 200 + i % 30 * 240, y = 200 + i / 30 * 240;
        map.Box({x, y, 0}, {x + 48, y + 48, 200});
    }
    const CompiledLevel level = Compile(map, 0, {LightQuality::None, 1, {}});
    EXPECT_GT(level.hidden, 1500U);
    EXPECT_GT(level.hiddenLeftOut, 1000U);
    EXPECT_EQ(level.notes, std::vector<std::string>());
}

TEST(Compile, NoLeafHoldsHiddenFacesBesideOthers) {
    MapBuilder map;
    map.skirts = true;
    map.guards = "net floors ceilings";
    map.Room({0, 0, 0}, {1024, 1024, 400}).Box({300, 300, 0}, {400, 400, 100}, "clip").Start("64 64 64");
    const WorldFile world = Compile(map.Box({600, 600, 0}, {700, 700, 40})).world;
    constexpr int CLIP = 6;  // of the test materials
    int hidden = 0;
    for (const WorldLeaf& leaf : world.leaves) {
        int hiddenHere = 0;
        for (uint32_t i = 0; i < leaf.polygonCount; ++i)
            hiddenHere += world.polygons[leaf.firstPolygon + i].texture == CLIP;
        EXPECT_TRUE(hiddenHere == 0 || hiddenHere == static_cast<int>(leaf.polygonCount));
        hidden += hiddenHere;
    }
    EXPECT_GT(hidden, 20);
}

TEST(Compile, OneRunTellsAllFaultsInTheOrderOfTheirLines) {
    MapBuilder map;
    map.Key("ambeint", "3")
        .Room({0, 0, 0}, {512, 512, 512})
        .Start("64 64 64")
        .Light("-8 64 64")
        .BeginEntity("func_door");
    map.Box({100, 100, 0}, {164, 164, 64}, "marble");
    const std::string text = MessageOf([&] { Compile(map); });
    size_t last = 0;
    for (const char* part : {"unknown key ambeint", "the light at (-8 64 64)", "unknown entity func_door",
                             "func_door cannot have brushes"}) {
        const size_t at = text.find(part);
        ASSERT_NE(at, std::string::npos) << part << "\n" << text;
        EXPECT_GE(at, last) << part;
        last = at;
    }
    MapBuilder marble = OneRoom();
    for (int i = 0; i < 25; ++i)
        marble.Box({10 + i * 20, 100, 0}, {26 + i * 20, 164, 64}, "marble" + std::to_string(i));
    const std::string many = MessageOf([&] { Compile(marble); });
    EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 20) << "20 lines and how many more";
    EXPECT_NE(many.find("and 5 more: test.map:: the texture \"...\" is not"), std::string::npos) << many;
}

TEST(Compile, ALeakIsTakenForAQuickLookAndPartsBeyondReachAreNamed) {
    MapBuilder map;
    map.Key("subdivide", "0").Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64");
    map.Box({2000, 0, 0}, {2064, 64, 64}).Box({2064, 0, 0}, {2128, 64, 64});
    const CompiledLevel sealed = Compile(map);
    EXPECT_EQ(sealed.notes, std::vector<std::string>{
                                "test.map:52: 2 brushes around (2064 32 32) cannot be reached or seen, and left out"});
    MapBuilder open;
    open.Box({0, 0, -16}, {512, 512, 0}).Start("64 64 64");
    EXPECT_THROW(Compile(open), LeakError);
    const CompiledLevel quick = CompileMap(ParseMap(open.Text(), "open.map"), {TestMaterials()}, 0, FAST_LIGHT, true);
    EXPECT_EQ(quick.leaks.size(), 1U);
    EXPECT_GE(quick.world.polygons.size(), 6U);
    ASSERT_EQ(quick.notes.size(), 1U);
    EXPECT_EQ(quick.notes[0].find("open.map: the level leaks"), 0U);
}

TEST(Compile, CountsBeyondTheLimitsAreAllNamed) {
    ExpectRefusal("40000 nodes, at most 32767; 25001 points, at most 25000", [] {
        CheckCounts("big.map", {{"nodes", 40000, 32767}, {"leaves", 5, 16384}, {"points", 25001, 25000}});
    });
}

TEST(Compile, LimitsAreAskedBeforeTheWork) {
    const auto roomWith = [](int brushes) {
        MapBuilder map = OneRoom();
        for (int i = 0; i < brushes; ++i)
            map.Box({100, 100, 0}, {164, 164, 64});
        return map;
    };
    ExpectRefusal("test.map:160003: more than 20000 brushes", [&] { Compile(roomWith(20000)); });
    ExpectRefusal("this brush touches 800 others", [&] { Compile(roomWith(800)); });
    ExpectRefusal("the level measures 78000 units", [] {
        Compile(OneRoom().Box({700, 0, 0}, {764, 64, 64}).Key("scale", "100"));
    });
    std::string faces;
    for (int i = 0; i < 129; ++i)
        faces += "( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 0 0 0 1 1\n";
    ExpectRefusal("more than 128 faces on one brush", [&] { Compile(OneRoom().Brush(faces)); });
}
