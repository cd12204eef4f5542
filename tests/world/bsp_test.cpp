// The world file: what is loaded, what is refused, what is derived from it.
#include "world/bsp.h"

#include "memory/files.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/bsp_check.h"
#include "world/world_tables.h"

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

namespace {

constexpr const char* INVALID = "Not a valid BSP file";
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

using Damage = std::function<void(WorldGeometryTables&)>;

// Two leaves on either side of x = 0: a wall with four corners at x = 10, a triangle on the floor at x < 0.
std::vector<uint8_t> TwoLeavesFile(const Damage& damage = [](WorldGeometryTables&) {}) {
    TinyWorld world;
    const int16_t wall = world.AddLeaf({{{10, 0, 0}, {10, 0, 8}, {10, 6, 8}, {10, 6, 0}}});
    const int16_t floor = world.AddLeaf({{{0, 0, 0}, {0, 0, -8}, {-8, 0, 0}}});
    world.AddNode({1, 0, 0, 0}, wall, floor);
    world.Publish();
    damage(WorldGeometry);
    return WorldFileBytes();
}

class WorldFile : public PoolFixture {
protected:
    // The message with which the file is refused; empty when it is loaded.
    std::string Refusal(const std::vector<uint8_t>& bytes) {
        FreshPool(POOL_BYTES);
        const FatalThrown fatal = CatchFatal([&] { LoadBspWorld(FileOf(bytes)); });
        EXPECT_EQ(fatal.code, 0);
        EXPECT_EQ(fatal.path.empty(), fatal.text.empty());
        EXPECT_EQ(ReadStream, nullptr) << "the file is left open";
        return fatal.text;
    }
};

TEST_F(WorldFile, IsRefusedWhenItsHeadOrLengthIsWrong) {
    const std::vector<uint8_t> good = TwoLeavesFile();
    const auto refusalWith = [&](size_t offset, uint8_t value) {
        std::vector<uint8_t> bytes = good;
        bytes[offset] = value;
        return Refusal(bytes);
    };
    EXPECT_EQ(Refusal(good), "");
    EXPECT_EQ(refusalWith(3, 'q'), INVALID);
    EXPECT_EQ(Refusal({}), INVALID);
    EXPECT_EQ(refusalWith(7, 9), "Old BSP Version");
    EXPECT_EQ(refusalWith(7, 11), "Old BSP Version");
    for (size_t count = 8; count < 32; count += 4) {
        EXPECT_EQ(refusalWith(count + 3, 200), INVALID) << count;
        for (const uint8_t high : {uint8_t{0x01}, uint8_t{0x7F}, uint8_t{0xFF}})
            EXPECT_EQ(refusalWith(count, high), INVALID) << count;
    }
    for (size_t length = 8; length < good.size(); ++length) {
        const std::vector<uint8_t> cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
        ASSERT_EQ(Refusal(cut), INVALID) << "cut to " << length << " bytes";
    }
    EXPECT_EQ(FatalOf([] { LoadBspWorld("no such world.bgm"); }), "0: No .BSP file found");
    FreshPool(1 << 20);
    EXPECT_EQ(FatalOf([&] { LoadBspWorld(FileOf(good)); }), "0: Not enough memory for the BSP file");
}

TEST_F(WorldFile, IsRefusedWithAnIndexOrNumberOutOfRange) {
    const std::pair<const char*, Damage> cases[] = {
        {"no node", [](WorldGeometryTables& w) { w.nodeCount = 0; }},
        {"front child is no node", [](WorldGeometryTables& w) { w.nodes[0].frontChild = 1; }},
        {"back child is no leaf", [](WorldGeometryTables& w) { w.nodes[0].backChild = ~2; }},
        {"node plane", [](WorldGeometryTables& w) { w.nodes[0].plane = 3; }},
        {"leaf's first polygon", [](WorldGeometryTables& w) { w.leaves[1].firstPolygon = 2; }},
        {"leaf's polygon count", [](WorldGeometryTables& w) { w.leaves[0].polygonCount = 3; }},
        {"two corners", [](WorldGeometryTables& w) { w.polygons[0].cornerCount = 2; }},
        {"thirteen corners",
         [](WorldGeometryTables& w) {
             w.polygons[0].cornerCount = 13;
             w.file.polyVertices = 20;
         }},
        {"polygon's first vertex", [](WorldGeometryTables& w) { w.polygons[1].firstVertex = 5; }},
        {"polygon plane", [](WorldGeometryTables& w) { w.polygons[1].plane = 3; }},
        {"vertex point", [](WorldGeometryTables& w) { w.polyVertices[2].point = w.file.points; }},
        {"huge vertex point", [](WorldGeometryTables& w) { w.polyVertices[2].point = 0xFFFFFFFF; }},
        {"u", [](WorldGeometryTables& w) { w.polyVertices[2].u = NOT_A_NUMBER; }},
        {"intensity", [](WorldGeometryTables& w) { w.polyVertices[2].intensity = NOT_A_NUMBER; }},
        {"position", [](WorldGeometryTables& w) { w.points[1].position.y = std::numeric_limits<float>::infinity(); }},
        {"plane normal", [](WorldGeometryTables& w) { w.planes[0].ny = NOT_A_NUMBER; }},
        {"plane distance", [](WorldGeometryTables& w) { w.planes[2].d = NOT_A_NUMBER; }},
        {"root is its own child", [](WorldGeometryTables& w) { w.nodes[0].backChild = 0; }},
    };
    for (const auto& [name, damage] : cases)
        EXPECT_EQ(Refusal(TwoLeavesFile(damage)), INVALID) << name;
    for (const size_t offset : {6u, 10u, 14u, 30u, 34u, 38u}) {  // centre and half extents of the root and of a leaf
        for (const size_t record : {size_t{32}, size_t{32 + 42 + 2}}) {
            std::vector<uint8_t> bytes = TwoLeavesFile();
            std::memcpy(&bytes[record + offset], &NOT_A_NUMBER, 4);
            EXPECT_EQ(Refusal(bytes), INVALID) << "record at " << record << ", offset " << offset;
        }
    }
}

// A chain of nodes that all have the same leaf behind them. The leaf counts once for each node.
TEST_F(WorldFile, HoldsATreeOfLimitedDepthAndAsManyPolygonsAsItsRadiiCanBeMeasuredOf) {
    const auto refusal = [&](int depth, const Damage& damage, size_t polygons = 0) {
        TinyWorld world;
        const int16_t leaf = world.AddLeaf(std::vector<Corners>(polygons, {{0, 0, 0}, {0, 0, -8}, {-8, 0, 0}}));
        int16_t child = leaf;
        for (int i = 0; i < depth; ++i)
            child = world.AddNode({1, 0, 0, 0}, child, leaf);
        world.Publish();
        damage(WorldGeometry);
        return Refusal(WorldFileBytes());
    };
    const Damage none = [](auto&) {}, skipsNodeOne = [](auto&w) { w.nodes[0].frontChild = 2; };
    EXPECT_EQ(refusal(BSP_DEPTH_MAX, none), "");
    EXPECT_EQ(refusal(BSP_DEPTH_MAX + 1, none), INVALID);
    EXPECT_EQ(refusal(3, skipsNodeOne), "");
    EXPECT_EQ(refusal(3, [](auto& w) { w.nodes[0].backChild = 2; }), INVALID) << "two parents";
    EXPECT_EQ(refusal(3, [](auto& w) { w.nodes[2].backChild = 1; }), INVALID) << "a cycle";
    EXPECT_EQ(refusal(BSP_DEPTH_MAX - 1, none, 64), "");
    EXPECT_EQ(refusal(BSP_DEPTH_MAX, none, 64), INVALID);
    EXPECT_EQ(refusal(BSP_DEPTH_MAX, skipsNodeOne, 64), "");
}

TEST(WorldCounts, LeaveRoomForTheSpareRecordsInEveryIndex) {
    const auto areValid = [](const std::array<uint32_t, 6>& n) {
        WorldGeometry.nodeCount = n[0];
        WorldGeometry.leafCount = n[1];
        WorldGeometry.file = {n[2], n[3], n[4], n[5]};
        return BspCountsAreValid();
    };
    const std::array<uint32_t, 6> most = {32768, 16384, 62536, 29767, 56536, 56536};
    EXPECT_TRUE(areValid(most));
    EXPECT_FALSE(areValid({0, 1}));
    EXPECT_FALSE(areValid({1, 0}));
    for (size_t i = 0; i < most.size(); ++i) {
        std::array<uint32_t, 6> tooMany = most;
        ++tooMany[i];
        EXPECT_FALSE(areValid(tooMany)) << i;
    }
    areValid({0xFFFFFFFF, 0, 0, 0, 0xFFFFFFFF, 0});
    EXPECT_GT(BspTableBytes(), uint64_t{0xFFFFFFFF} * 60) << "sizes are counted in 64 bits";
}

}  // namespace
