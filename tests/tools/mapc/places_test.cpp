// The places that a map marks, from the entity to the file.
#include "formats/places_file.h"
#include "map_builder.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

MapBuilder RoomWith(const std::vector<std::string>& marks) {
    MapBuilder map;
    map.Room({0, 0, 0}, {512, 512, 512}).Start("64 64 64", 0).Key("route_time", "90");
    for (const std::string& mark : marks)
        map.BeginEntity("info_route", mark);
    return map;
}

}  // namespace

TEST(Places, MarksComeToTheFileInTheOrderOfTheRoute) {
    const MapBuilder map = RoomWith({"\"origin\" \"300 64 50\"\n\"name\" \"off the way\"\n",
                                     "\"origin\" \"64 400 50\"\n\"order\" \"2\"\n\"reach\" \"40\"\n",
                                     "\"origin\" \"164 84 50\"\n\"order\" \"1\"\n\"angle\" \"90\"\n"});
    const std::string file = testing::TempDir() + "/places.txt";
    std::ofstream(file) << PlacesText(Compile(map, 3).places);
    const PlacesFile places = ReadPlaces(file);
    EXPECT_EQ(places.routeTime, 90);
    ASSERT_EQ(places.marks.size(), 3U);
    // The start, at (223, -211) above a floor of 376, looks along +z, and along east in the map.
    const MarkedPlace& first = places.marks[0];
    EXPECT_EQ(first.order, 1);
    EXPECT_EQ(first.x, 223 - 20);
    EXPECT_EQ(first.y, 376 + 109);
    EXPECT_EQ(first.z, -211 + 100);
    EXPECT_EQ(first.heading, 90);  // north: to the left of the start
    EXPECT_EQ(places.marks[1].reach, 40);
    EXPECT_EQ(places.marks[1].heading, std::nullopt);
    EXPECT_EQ(places.marks[2].order, 0);
    EXPECT_EQ(places.marks[2].name, "off the way");
    EXPECT_EQ(places.frame.ToMap({first.x, first.y, first.z}), (std::array<double, 3>{164, 84, 109}));
}

TEST(Places, ARouteWithGapsIsRefused) {
    const std::string first = "\"origin\" \"164 84 50\"\n\"order\" \"1\"\n";
    const std::string third = "\"origin\" \"164 84 50\"\n\"order\" \"3\"\n";
    ExpectRefusal("mark 3 stands where 2 should", [&] { Compile(RoomWith({first, third})); });
    ExpectRefusal("mark 1 stands where 2 should", [&] { Compile(RoomWith({first, first})); });
    ExpectRefusal("no floor below info_route", [&] { Compile(RoomWith({"\"origin\" \"164 84 -50\"\n"})); });
}
