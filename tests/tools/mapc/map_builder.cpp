#include "map_builder.h"

#include <fmt/format.h>

std::vector<Material> TestMaterials() {
    return {{0, "wall", 64, 64, 0},
            {1, "floor", 64, 64, 0},
            {2, "ceiling", 64, 64, 0},
            {3, "tall", 32, 128, 0},
            {10, "water", 64, 64, MATERIAL_LIQUID},
            {5, "grate", 64, 64, MATERIAL_CUTOUT, {128, 128, 128, 255}, 25},
            {6, "clip", 8, 8, MATERIAL_CLIP},
            {7, "sky", 64, 64, MATERIAL_SKY},
            {8, "panel", 64, 64, 0, {128, 128, 128, 255}, 100, 60},
            {93, "skin", 64, 64, 0}};
}

MapBuilder& MapBuilder::Key(const std::string& name, const std::string& value) {
    keys_ += fmt::format("\"{}\" \"{}\"\n", name, value);
    return *this;
}

namespace {

std::string PointText(const Corner& p) {
    return fmt::format("( {} {} {} ) ", p[0], p[1], p[2]);
}

Corner Sum(const Corner& a, const Corner& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

}  // namespace

// u x v points into the brush, so that at, at + u, at + v run clockwise seen from outside.
std::string MapBuilder::Face(const Corner& at, const Corner& u, const Corner& v, const std::string& texture) const {
    std::string line = PointText(at) + PointText(Sum(at, u)) + PointText(Sum(at, v)) + texture;
    const Corner inward{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    if (!valve) return line + " 0 0 0 2 2\n";
    const bool flat = inward[0] == 0 && inward[1] == 0;
    const bool eastWest = std::abs(inward[0]) >= std::abs(inward[1]);
    return line + (flat       ? " [ 1 0 0 0 ] [ 0 -1 0 0 ] 0 2 2\n"
                   : eastWest ? " [ 0 1 0 0 ] [ 0 0 -1 0 ] 0 2 2\n"
                              : " [ 1 0 0 0 ] [ 0 0 -1 0 ] 0 2 2\n");
}

MapBuilder& MapBuilder::Brush(const std::string& faces) {
    (open_.empty() ? worldBrushes_ : open_) += "{\n" + faces + "}\n";
    return *this;
}

MapBuilder& MapBuilder::Box(const Corner& low, const Corner& high, const std::string& texture) {
    constexpr Corner X{1, 0, 0};
    constexpr Corner Y{0, 1, 0};
    constexpr Corner Z{0, 0, 1};
    return Brush(Face(low, Y, Z, texture) + Face(high, Z, Y, texture) + Face(low, Z, X, texture) +
                 Face(high, X, Z, texture) + Face(low, X, Y, texture) + Face(high, Y, X, texture));
}

MapBuilder& MapBuilder::TurnedBox(const Corner& low, const Corner& high, const std::string& texture) {
    constexpr Corner Z{0, 0, 1};
    const int middleX = (low[0] + high[0]) / 2;
    const int middleY = (low[1] + high[1]) / 2;
    const Corner west{low[0], middleY, low[2]};
    const Corner east{high[0], middleY, low[2]};
    const Corner south{middleX, low[1], low[2]};
    const Corner north{middleX, high[1], low[2]};
    const auto along = [](const Corner& a, const Corner& b) { return Corner{b[0] - a[0], b[1] - a[1], 0}; };
    return Brush(Face(west, Z, along(west, south), texture) + Face(south, Z, along(south, east), texture) +
                 Face(east, Z, along(east, north), texture) + Face(north, Z, along(north, west), texture) +
                 Face(low, {1, 0, 0}, {0, 1, 0}, texture) + Face(high, {0, 1, 0}, {1, 0, 0}, texture));
}

MapBuilder& MapBuilder::Wedge(int x, int y, int height) {
    const auto point = [](double px, double py, double pz) { return fmt::format("( {} {} {} ) ", px, py, pz); };
    const auto face = [&](const std::string& points) { return points + "wall 0 0 0 2 2\n"; };
    const std::string low = point(x, y, 0), north = point(x + 0.3, y + 90.7, 0), east = point(x + 95.5, y - 0.7, 0);
    const std::string top = point(x + 40.1, y + 30.3, height);
    return Brush(face(low + north + top) + face(low + top + east) + face(east + top + north) +
                 face(low + east + north));
}

MapBuilder& MapBuilder::Room(const Corner& low, const Corner& high, const std::string& texture) {
    const auto& [x0, y0, z0] = low;
    const auto& [x1, y1, z1] = high;
    Box({x0 - 16, y0 - 16, z0 - 16}, {x1 + 16, y1 + 16, z0}, texture);
    Box({x0 - 16, y0 - 16, z1}, {x1 + 16, y1 + 16, z1 + 16}, texture);
    Box({x0 - 16, y0 - 16, z0}, {x0, y1 + 16, z1}, texture);
    Box({x1, y0 - 16, z0}, {x1 + 16, y1 + 16, z1}, texture);
    Box({x0, y0 - 16, z0}, {x1, y0, z1}, texture);
    return Box({x0, y1, z0}, {x1, y1 + 16, z1}, texture);
}

MapBuilder& MapBuilder::BeginEntity(const std::string& className, const std::string& keys) {
    if (!open_.empty()) entities_ += open_ + "}\n";
    open_ = fmt::format("{{\n\"classname\" \"{}\"\n{}", className, keys);
    return *this;
}

MapBuilder& MapBuilder::Start(const std::string& origin, int angle) {
    entities_ += fmt::format("{{\n\"classname\" \"info_player_start\"\n\"origin\" \"{}\"\n\"angle\" \"{}\"\n}}\n",
                             origin, angle);
    return *this;
}

MapBuilder& MapBuilder::Light(const std::string& origin, const std::string& keys) {
    entities_ += fmt::format("{{\n\"classname\" \"light\"\n\"origin\" \"{}\"\n{}}}\n", origin, keys);
    return *this;
}

std::string MapBuilder::Text() const {
    const std::string last = open_.empty() ? "" : open_ + "}\n";
    const std::string world =
        fmt::format("{{\n\"classname\" \"worldspawn\" \"skirts\" \"{}\" \"guards\" \"{}\"\n", skirts ? 1 : 0, guards);
    return world + keys_ + worldBrushes_ + "}\n" + entities_ + last;
}

CompiledLevel Compile(const MapBuilder& builder, int level, const BakeOptions& bake) {
    return CompileMap(ParseMap(builder.Text(), "test.map"), {TestMaterials()}, level, bake);
}
