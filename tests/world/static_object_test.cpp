// Loads sky.sob into the tables of the world.
#include "world/static_object.h"

#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

#include <tuple>

namespace {

constexpr size_t POLYGONS_FIELD = 8, POINTS_FIELD = 12, FIRST_POINT = 20, FIRST_POLYGON = FIRST_POINT + 3 * 12,
                 FIRST_CORNER = FIRST_POLYGON + 36;
constexpr float PLANE[4] = {0.25f, -0.5f, 0.75f, -10.0f};

template <class Value>
void Append(std::vector<uint8_t>& bytes, const Value& value) {
    const auto* first = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

// Two polygons of textures 17 and 18 over three points.
std::vector<uint8_t> SmallSky() {
    std::vector<uint8_t> bytes = {'E', 's', 'o', 'b', 0, 0, 0, 9, 0, 0, 0, 2, 0, 0, 0, 3, 0xA, 0xB, 0xC, 0xD};
    for (const Vec3& point : {Vec3{-1.5f, -1, 10}, Vec3{1, -1, 10}, Vec3{0, 1, 10}})
        Append(bytes, point);
    for (const uint8_t texture : {uint8_t{17}, uint8_t{18}}) {
        bytes.insert(bytes.end(), {texture, 0xFF, 0xFF});
        for (const float number : PLANE) {
            Append(bytes, number);
            Append(bytes, 0xDEADBEEF);
        }
        bytes.push_back(3);
        for (uint16_t point = 0; point < 3; ++point) {
            Append(bytes, point);
            Append(bytes, static_cast<float>(point) * 128.0f);
            Append(bytes, -1.0f);
        }
    }
    return bytes;
}

class StaticObject : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        world_.AddLeaf(RoomSides({-50, -50, -50}, {50, 50, 50}));
        world_.Publish();
    }

    int32_t Load(const std::vector<uint8_t>& bytes) { return LoadStaticObject(FileOf(bytes)); }

    TinyWorld world_;
};

TEST_F(StaticObject, IsAppendedBehindTheWorld) {
    const GeometryCounts before = WorldGeometry.used;
    testing::internal::CaptureStdout();
    EXPECT_EQ(Load(SmallSky()), 1);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(output.starts_with("Reading Static Object...\nin = 8\nu  = 0.000000\nv  = -1.000000\n"
                                   "i  = 8192.000000\nin = 9\n"))
        << output;
    const GeometryCounts& used = WorldGeometry.used;
    EXPECT_EQ(used.points, before.points + 3);
    EXPECT_EQ(used.polygons, before.polygons + 2);
    EXPECT_EQ(used.polyVertices, before.polyVertices + 6);
    EXPECT_EQ(used.planes, before.planes + 2);
    EXPECT_EQ(WorldGeometry.fixed.points, used.points);
    EXPECT_EQ(SkyObject.polygonCount, 2);
    EXPECT_EQ(SkyObject.firstPoint, static_cast<int32_t>(before.points));
    const PolyRecord second = WorldGeometry.polygons[before.polygons + 1];
    EXPECT_EQ(second.texture, 18);
    EXPECT_EQ(second.flags, 0);
    const PolyVertex& corner = WorldGeometry.polyVertices[second.firstVertex + 2];
    EXPECT_EQ(corner.u, 256.0f);
    EXPECT_EQ(corner.intensity, 8192.0f);
    EXPECT_EQ(WorldGeometry.points[corner.point].position.y, 1.0f);
    EXPECT_EQ(WorldGeometry.planes[second.plane].d, PLANE[3]);
}

TEST_F(StaticObject, WhatIsNoneLeavesALevelWithoutOne) {
    const uint32_t polygons = WorldGeometry.used.polygons;
    SkyObject.polygonCount = 5;
    testing::internal::CaptureStdout();
    EXPECT_EQ(Load(std::vector<uint8_t>(100)), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Reading Static Object...\nNot a valid .SOB file.");
    EXPECT_EQ(SkyObject.polygonCount, 0);
    EXPECT_EQ(LoadStaticObject("there is no such file"), 0);
    EXPECT_EQ(WorldGeometry.used.polygons, polygons);
}

TEST_F(StaticObject, ADamagedOneIsRefused) {
    const char* const invalid = "0: Not a valid static object file";
    const char* const noRoom = "0: No room for the static object";
    const std::tuple<size_t, uint8_t, const char*> rows[] = {
        {7, 8, "0: Old SOB Version"},     {POLYGONS_FIELD, 0xFF, invalid}, {POINTS_FIELD, 0xFF, noRoom},
        {FIRST_POINT + 3, 0xFF, invalid}, {FIRST_CORNER - 1, 0, invalid},  {FIRST_CORNER - 1, 128, invalid},
        {FIRST_CORNER, 3, invalid},
    };
    const GeometryCounts before = WorldGeometry.used;
    for (const auto& [offset, value, message] : rows) {
        std::vector<uint8_t> bytes = SmallSky();
        bytes[offset] = value;
        EXPECT_EQ(FatalOf([&] { Load(bytes); }), message) << offset;
        WorldGeometry.used = before;
    }
    WorldGeometry.used.polyVertices += SPARE_POLY_VERTICES - CLIP_SCRATCH_ENTRIES - 5;
    EXPECT_EQ(FatalOf([&] { Load(SmallSky()); }), noRoom) << "for five of the six corners";
}

}  // namespace
