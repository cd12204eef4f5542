#include "formats/light_files.h"
#include "formats/world_file.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

WorldFile SmallWorld() {
    WorldFile world;
    world.nodes = {{-2, -1, 1, {1, 2, 3}, {4, 5, 6}}};
    world.leaves = {{1, 0, {7, 8, 9}, {10, 11, 12}}, {0, 1, {}, {}}};
    world.planes = {{{0, 1, 0}, -5}, {{1, 0, 0}, 2.5F}};
    world.polygons = {{3, 17, WORLD_CORNER_LIGHT, 0, 1}};
    world.points = {{{1, 2, 3}, {0, 1, 0}}, {{4, 5, 6}, {}}, {{-7, 8, 9}, {}}};
    world.corners = {{0, 128, -256}, {1, 0, 0}, {2, 1.5F, 2}};
    return world;
}

}  // namespace

TEST(WorldFormat, RefusesEveryIndexOutsideItsTable) {
    const std::pair<const char*, std::function<void(WorldFile&)>> damages[] = {
        {"1 nodes", [](WorldFile& w) { w.nodes[0].front = 1; }},
        {"2 leaves", [](WorldFile& w) { w.nodes[0].back = -3; }},
        {"2 planes", [](WorldFile& w) { w.nodes[0].plane = 2; }},
        {"1 polygons", [](WorldFile& w) { w.leaves[0].polygonCount = 2; }},
        {"2 planes", [](WorldFile& w) { w.polygons[0].plane = 2; }},
        {"3 corners", [](WorldFile& w) { w.polygons[0].firstCorner = 1; }},
        {"3 points", [](WorldFile& w) { w.corners[1].point = 3; }},
    };
    for (const auto& row : damages) {
        WorldFile world = SmallWorld();
        row.second(world);
        ExpectRefusal(std::string("outside the ") + row.first, [&] { DecodeWorld(EncodeWorld(world), "file"); });
    }
}

TEST(WorldFormat, RefusesWhatIsNoWorldOrNotAllOfOne) {
    std::vector<uint8_t> bytes = EncodeWorld(SmallWorld());
    const auto expectRefusal = [&](const char* part) { ExpectRefusal(part, [&] { DecodeWorld(bytes, "file"); }); };
    bytes.push_back(0);
    expectRefusal("counts ask for");
    bytes.resize(bytes.size() - 2);
    expectRefusal("counts ask for");
    bytes[7] = 9;
    expectRefusal("version 9");
    bytes.assign(40, 0);
    expectRefusal("not a world file");
    bytes.clear();
    expectRefusal("too short");
}

TEST(LightFormat, RefusesListsThatTheFileDoesNotHold) {
    std::vector<uint8_t> map = EncodeLightMap({});
    map.pop_back();
    ExpectRefusal("instead of", [&] { DecodeLightMap(map, "file"); });
    LightSlotFile lights;
    lights.slots.resize(2);
    lights.slots[1].pointCount = 2;
    lights.points = {{7, 0.5F}, {65535, 0.25F}};
    for (const int first : {1, -1}) {
        lights.slots[1].firstPoint = static_cast<decltype(lights.slots[1].firstPoint)>(first);
        ExpectRefusal("slot 1", [&] { DecodeLightSlots(EncodeLightSlots(lights), "file"); });
    }
}
