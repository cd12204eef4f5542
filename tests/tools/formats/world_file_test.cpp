#include "formats/error.h"
#include "formats/light_files.h"
#include "formats/world_file.h"

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

LightSlotFile TwoSlots() {
    LightSlotFile lights;
    lights.slots.resize(2);
    lights.slots[1] = {LIGHT_BLINK, 1, 2, 1, 0, 0, 9, {1, 2, 3}, 500, 250000, 1.5F, 2, 0.5F, 10, 20, -0.25F, 0.125F};
    lights.points = {{7, 0.5F}, {65535, 0.25F}};
    lights.corners = {{9, 1}};
    return lights;
}

template <class Decode>
std::string Refusal(Decode decode, std::vector<uint8_t> bytes) {
    try {
        decode(std::move(bytes), "file");
    } catch (const ContentError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(WorldFormat, RecordsLieWhereTheGameReadsThem) {
    const std::vector<uint8_t> bytes = EncodeWorld(SmallWorld());
    ASSERT_EQ(bytes.size(), 32U + 42 + 2 * 44 + 2 * 16 + 10 + 3 * 24 + 3 * 16);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "Gbsp");
    EXPECT_EQ(bytes[7], 10);              // version, big-endian
    EXPECT_EQ(bytes[15], 2);              // leaves
    EXPECT_EQ(bytes[32], 0xFE);           // the front child, little-endian: leaf 1
    EXPECT_EQ(bytes[36], 1);              // plane
    EXPECT_EQ(bytes[32 + 30 + 3], 0x40);  // 4.0 as the first half extent
    const size_t polygon = 32 + 42 + 88 + 32;
    EXPECT_EQ(bytes[polygon + 1], 17);
    EXPECT_EQ(bytes[polygon + 8], 1);
}

TEST(WorldFormat, ReadsBackWhatItWrote) {
    const WorldFile world = SmallWorld();
    EXPECT_EQ(EncodeWorld(DecodeWorld(EncodeWorld(world), "file")), EncodeWorld(world));
}

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

TEST(WorldFormat, RefusesOtherFilesAndWrongSizes) {
    std::vector<uint8_t> bytes = EncodeWorld(SmallWorld());
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
    EXPECT_EQ(bytes[15], 3);
    EXPECT_EQ(bytes[31 + 1], 60);  // after the light bytes, big-endian
    EXPECT_EQ(bytes.back(), 63);
    EXPECT_EQ(EncodeLightMap(DecodeLightMap(bytes, "file")), bytes);
    std::vector<uint8_t> cut(bytes.begin(), bytes.end() - 1);
    EXPECT_NE(Refusal(DecodeLightMap, cut).find("instead of"), std::string::npos);
}

TEST(LightFormat, SlotsReadBackWithListsOfOneLength) {
    const std::vector<uint8_t> bytes = EncodeLightSlots(TwoSlots());
    ASSERT_EQ(bytes.size(), 6U + 2 * 96 + 2 * 12);
    EXPECT_EQ(bytes[1], 2);
    EXPECT_EQ(bytes[3], 2);
    EXPECT_EQ(bytes[6], 0xFF);  // a free slot
    const LightSlotFile read = DecodeLightSlots(bytes, "file");
    EXPECT_EQ(read.corners.size(), 2U);  // padded
    EXPECT_EQ(read.slots[1].radiusSquared, 250000);
    EXPECT_EQ(read.slots[1].stepUp, 0.125F);
    EXPECT_EQ(read.points[1].index, 65535);
    EXPECT_EQ(EncodeLightSlots(read), bytes);
    EXPECT_EQ(EncodeLightSlots({}), std::vector<uint8_t>(6));
}

TEST(LightFormat, SlotsThatReachBeyondTheListsAreRefused) {
    LightSlotFile lights = TwoSlots();
    lights.slots[1].firstPoint = 1;
    EXPECT_NE(Refusal(DecodeLightSlots, EncodeLightSlots(lights)).find("slot 1 uses entries 1 + 2 of 2"),
              std::string::npos);
    lights.slots[1].firstPoint = -1;
    EXPECT_NE(Refusal(DecodeLightSlots, EncodeLightSlots(lights)).find("slot 1"), std::string::npos);
}
