// A static object (.sob): polygons with planes and texture coordinates of their own. A level's sky.sob is its sky.
//
// Layout: "Esob", then big-endian 32-bit version (9), polygon count, point count and 0; little-endian 3 x f32 a point;
// the polygons one after another: u8 texture, two zero bytes, plane nx ny nz d of eight bytes each (f32 and four zero
// bytes), u8 corner count, 10 a corner: u16 point, f32 u, f32 v.
//
// Axes, planes and winding as in a world file. The eye stands SKY_EYE_HEIGHT above the origin of a sky, whose polygons
// are seen from inside and drawn in the order of the file, the farthest therefore first.
#pragma once

#include "formats/world_file.h"
#include "records/table_facts.h"
#include "records/view_facts.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

constexpr uint32_t STATIC_OBJECT_MAGIC = 0x45736f62;  // "Esob"
constexpr uint32_t STATIC_OBJECT_VERSION = 9;

// Leaves room behind the object, in the game's tables, for the character and its split pieces.
constexpr size_t STATIC_OBJECT_POLYGONS_MAX = 1000;
constexpr size_t STATIC_OBJECT_POINTS_MAX = 2000;
constexpr size_t STATIC_OBJECT_POLYGON_CORNERS_MAX = BSP_CORNERS_MAX;
constexpr size_t STATIC_OBJECT_CORNERS_MAX = 4000;
static_assert(STATIC_OBJECT_POLYGONS_MAX < SPARE_POLYGONS && STATIC_OBJECT_POLYGONS_MAX < SPARE_PLANES &&
              STATIC_OBJECT_POINTS_MAX < SPARE_POINTS && STATIC_OBJECT_CORNERS_MAX < SPARE_POLY_VERTICES);

// Distance from the eye: a little less than where the accelerator's depths end.
constexpr double SKY_FARTHEST = 6000;
static_assert(SKY_FARTHEST * GLIDE_DEPTH_RANGE / GLIDE_FAR_DISTANCE < 65535);

struct StaticObjectCorner {
    uint16_t point = 0;
    float u = 0;  // 1/256 texel
    float v = 0;
};

struct StaticObjectPolygon {
    uint8_t texture = 0;  // slot
    WorldPlane plane;
    std::vector<StaticObjectCorner> corners;  // 3..12
};

struct StaticObjectFile {
    std::vector<WorldVector> points;
    std::vector<StaticObjectPolygon> polygons;
};

// Both refuse (ContentError) more than the limits above, fewer than three corners and points outside the table;
// decoding also a wrong magic or version and a short or overlong file.
std::vector<uint8_t> EncodeStaticObject(const StaticObjectFile& object, const std::string& fileName);
StaticObjectFile DecodeStaticObject(std::vector<uint8_t> content, const std::string& fileName);
