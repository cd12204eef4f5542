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

template <class Decode>
std::string Refusal(Decode decode, const std::vector<uint8_t>& bytes) {
    return MessageOf([&] { decode(bytes, "file"); });
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
    for (const auto& [table, damage] : damages) {
        WorldFile world = SmallWorld();
        damage(world);
        EXPECT_NE(Refusal(DecodeWorld, EncodeWorld(world)).find(std::string("outside the ") + table), std::string::npos)
            << table;
    }
}

TEST(WorldFormat, ReadsBackWhatItWroteAndNothingElse) {
    std::vector<uint8_t> bytes = EncodeWorld(SmallWorld());
    ASSERT_EQ(bytes.size(), 32U + 42 + 2 * 44 + 2 * 16 + 10 + 3 * 24 + 3 * 16);
    EXPECT_EQ(EncodeWorld(DecodeWorld(bytes, "file")), bytes);
    bytes.push_back(0);
    EXPECT_NE(Refusal(DecodeWorld, bytes).find("counts ask for"), std::string::npos);
    bytes.resize(bytes.size() - 2);
    EXPECT_NE(Refusal(DecodeWorld, bytes).find("counts ask for"), std::string::npos);
    bytes[7] = 9;
    EXPECT_NE(Refusal(DecodeWorld, bytes).find("version 9"), std::string::npos);
    EXPECT_NE(Refusal(DecodeWorld, std::vector<uint8_t>(40)).find("not a world file"), std::string::npos);
    EXPECT_NE(Refusal(DecodeWorld, {}).find("too short"), std::string::npos);
}

TEST(LightFormat, LightMapReadsBackAndIsChecked) {
    LightMapFile lights;
    lights.pointLight = {0, 64, 127};
    lights.cornerLight = {{1, 2, 3, 4, 5, 6, 7, 8}};
    lights.lightLevel = 60;
    lights.contrast = -100;
    lights.fadeDistance = 100000;
    lights.darkColour = {1, 2, 63};
    const std::vector<uint8_t> bytes = EncodeLightMap(lights);
    ASSERT_EQ(bytes.size(), 20U + 3 + 8 + 28);
    EXPECT_EQ(EncodeLightMap(DecodeLightMap(bytes, "file")), bytes);
    EXPECT_NE(Refusal(DecodeLightMap, {bytes.begin(), bytes.end() - 1}).find("instead of"), std::string::npos);
}

TEST(LightFormat, SlotsReadBackWithListsOfOneLength) {
    LightSlotFile lights;
    lights.slots.resize(2);
    lights.slots[1] = {LIGHT_BLINK, 1, 2, 1, 0, 0, 9, {1, 2, 3}, 500, 250000, 1.5F, 2, 0.5F, 10, 20, -0.25F, 0.125F};
    lights.points = {{7, 0.5F}, {65535, 0.25F}};
    lights.corners = {{9, 1}};
    const std::vector<uint8_t> bytes = EncodeLightSlots(lights);
    ASSERT_EQ(bytes.size(), 6U + 2 * 96 + 2 * 12);
    const LightSlotFile read = DecodeLightSlots(bytes, "file");
    EXPECT_EQ(read.corners.size(), 2U);  // padded
    EXPECT_EQ(read.slots[1].stepUp, 0.125F);
    EXPECT_EQ(read.points[1].index, 65535);
    EXPECT_EQ(EncodeLightSlots(read), bytes);
    for (const int first : {1, -1}) {
        lights.slots[1].firstPoint = static_cast<decltype(lights.slots[1].firstPoint)>(first);
        EXPECT_NE(Refusal(DecodeLightSlots, EncodeLightSlots(lights)).find("slot 1"), std::string::npos);
    }
}
