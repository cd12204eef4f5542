// A level's world (.bgm): a BSP tree whose leaves hold convex polygons.
//
// Layout: "Gbsp", then big-endian 32-bit version (10), node, leaf, plane, polygon, point and corner counts; then the
// six tables, little-endian and without gaps, records of 42, 44, 16, 10, 24 and 16 bytes.
//
// Axes: x right, y up, z forward (left-handed). A plane's normal points into the solid: a polygon is seen, and
// collides, from its negative side. Corners run counter-clockwise as seen from there, so that
// (p1 - p0) x (p2 - p0) is the direction of the normal.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

constexpr uint32_t WORLD_MAGIC = 0x47627370;  // "Gbsp"
constexpr uint32_t WORLD_VERSION = 10;

using WorldVector = std::array<float, 3>;

// Children: >= 0 a node, < 0 the leaf ~child. The front child lies where the plane's distance is >= 0.
struct WorldNode {
    int16_t front = 0;
    int16_t back = 0;
    uint32_t plane = 0;
    WorldVector centre{};  // centre of the box; the engine measures the radii from it
    WorldVector halfExtents{};
};

struct WorldLeaf {
    uint32_t polygonCount = 0;
    uint32_t firstPolygon = 0;
    WorldVector centre{};
    WorldVector halfExtents{};
};

struct WorldPlane {
    WorldVector normal{};
    float offset = 0;  // signed distance of p = normal . p + offset
};

constexpr uint8_t WORLD_CORNER_LIGHT = 0;  // shading: a light byte per corner, at most eight corners
constexpr uint8_t WORLD_POINT_LIGHT = 1;   // shading: the light bytes of the points

struct WorldPolygon {
    uint8_t cornerCount = 0;  // 3..12
    uint8_t texture = 0;      // slot
    uint8_t shading = WORLD_POINT_LIGHT;
    uint32_t firstCorner = 0;
    uint32_t plane = 0;
};

struct WorldPoint {
    WorldVector position{};
    WorldVector normal{};
};

struct WorldCorner {
    uint32_t point = 0;
    float u = 0;  // 1/256 texel
    float v = 0;
};

// Worlds that are never written may be larger than the numbers of the file reach.
struct WorldFile {
    std::vector<WorldNode> nodes;
    std::vector<WorldLeaf> leaves;
    std::vector<WorldPlane> planes;
    std::vector<WorldPolygon> polygons;
    std::vector<WorldPoint> points;
    std::vector<WorldCorner> corners;
};

std::vector<uint8_t> EncodeWorld(const WorldFile& world);  // planes, polygons and corners within 16 bits
// ContentError for a wrong magic or version, a short or overlong file and any index outside its table.
WorldFile DecodeWorld(std::vector<uint8_t> content, const std::string& fileName);
WorldFile ReadWorldFile(const std::filesystem::path& path);
