// Terrain: its shape, its order from every view, and what is refused.
#include "formats/files.h"
#include "map_builder.h"
#include "mapc/terrain.h"
#include "mapc/terrain_mesh.h"
#include "support/content_error.h"
#include "world_checks.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <functional>

namespace {

namespace fs = std::filesystem;

const fs::path FOLDER = fs::path(testing::TempDir()) / "terrain";

void WriteHeights(const std::string& name, int width, int height, const std::function<double(int, int)>& at,
                  uint32_t format = PNG_FORMAT_LINEAR_Y) {
    std::vector<uint16_t> values;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            values.push_back(static_cast<uint16_t>(65535 * at(x, y)));
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<uint32_t>(width);
    image.height = static_cast<uint32_t>(height);
    image.format = format;
    fs::create_directories(FOLDER);
    ASSERT_TRUE(png_image_write_to_file(&image, (FOLDER / name).c_str(), 0, values.data(), 0, nullptr));
}

// A hill amid a floor with a wall running through it; the hill's border is black.
double Hill(int x, int y) {
    if (x == 0 || y == 0 || x == 8 || y == 8) return 0;
    return 0.5 + 0.3 * std::sin(x * 1.3) * std::cos(y * 0.9) + 0.2 * std::sin(x * y);
}

MapBuilder HillMap(const std::string& keys = "\"image\" \"hill.png\"\n\"steep\" \"tall\"\n\"high\" \"ceiling\"\n") {
    MapBuilder map;
    map.valve = true;
    map.Key("subdivide", "0").Room({-640, -640, 0}, {640, 640, 600}).Box({-40, -300, 0}, {40, 640, 180}, "wall");
    map.Start("-600 -600 64").BeginEntity("func_terrain", keys).Box({-512, -512, 0}, {512, 512, 256}, "floor");
    return map;
}

CompiledLevel CompileHill(const MapBuilder& map) {
    return CompileMap(ParseMap(map.Text(), (FOLDER / "hill.map").string()), {TestMaterials()}, 0, FAST_LIGHT);
}

}  // namespace

TEST(Terrain, IsSolidSmoothAndInOrderFromEveryView) {
    WriteHeights("hill.png", 9, 9, Hill);
    const WorldFile world = CompileHill(HillMap()).world;
    EXPECT_EQ(OpenEdges(world), Findings{});
    EXPECT_EQ(Faults(world), Findings{}) << "drawing order, winding, cells";
    // Row 2 of the image lies 256 units from its upper border, which is north: engine z = 256.
    EXPECT_NEAR(FloorAt(world, -255, 254), 256 * Hill(2, 2), 4);
    EXPECT_NEAR(FloorAt(world, 383, -127), 256 * Hill(7, 5), 4);
    EXPECT_NEAR(FloorAt(world, -560, 0), 0, 0.01) << "beside the terrain";
    size_t used[4] = {};
    for (const WorldPolygon& polygon : world.polygons)
        used[std::min<int>(polygon.texture, 3)]++;
    EXPECT_GT(used[3], 0u) << "steep ground has a texture of its own";
    EXPECT_LT(world.points.size(), world.corners.size() / 2) << "triangles share their points";
}

TEST(Terrain, ToleranceJoinsTrianglesWithoutGaps) {
    // A gentle hill around a hole that is black; the hill's border is black, too.
    const auto gentle = [](int x, int y) {
        const bool isBlack = std::min(x, y) == 0 || std::max(x, y) == 16 || (x > 8 && x < 12 && y > 4 && y < 8);
        return isBlack ? 0 : 0.6 + 0.3 * std::sin(x * 0.3) * std::cos(y * 0.2);
    };
    WriteHeights("gentle.png", 17, 17, gentle);
    const auto compile = [](const std::string& tolerance) {
        return CompileHill(HillMap("\"image\" \"gentle.png\"\n\"tolerance\" \"" + tolerance + "\"\n")).world;
    };
    const WorldFile world = compile("12");
    EXPECT_LT(world.polygons.size() * 2, compile("0").polygons.size());
    EXPECT_EQ(OpenEdges(world), Findings{});
    EXPECT_EQ(Faults(world), Findings{}) << "drawing order, winding, cells";
    for (int y = 0; y <= 16; ++y) {
        for (int x = 0; x <= 16; ++x) {
            if (x >= 7 && x <= 9) continue;  // the wall
            const double height = 256 * gentle(x, y);
            EXPECT_NEAR(FloorAt(world, x * 64 - 511.7, 511.8 - y * 64), height, height > 0 ? 14 : 1) << x << " " << y;
        }
    }
}

TEST(Terrain, SimplerTrianglesCoverTheGridAndKeepWhatIsBlack) {
    // Twice the areas of the triangles, and of those that are raised.
    const auto areas = [](const std::function<double(int, int)>& heightAt, double tolerance) {
        int all = 0, raised = 0;
        for (const auto& [a, b, c] : SimplifyGrid(21, 21, heightAt, tolerance)) {
            const int area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
            EXPECT_GT(area, 0);
            all += area;
            if (heightAt(a.x, a.y) + heightAt(b.x, b.y) + heightAt(c.x, c.y) > 0) raised += area;
        }
        return std::pair(all, raised);
    };
    const auto hill = [](int x, int y) {
        return 50 + 30 * std::sin(x * 1.3) * std::cos(y * 0.9) + 5 * std::sin(x * y);
    };
    EXPECT_EQ(areas(hill, 20), std::pair(800, 800));
    const auto low = [](int x, int y) { return x > 3 && x < 17 && y > 5 && y < 9 ? 5.0 : 0.0; };
    EXPECT_NEAR(areas(low, 20).second, areas(low, 0).second, 8);  // cells at corners may be divided the other way
}

TEST(Terrain, WhatCannotBeBuiltIsRefused) {
    WriteHeights("hill.png", 9, 9, Hill);
    WriteHeights("eight.png", 9, 9, Hill, PNG_FORMAT_GRAY);
    WriteHeights("wide.png", 130, 9, Hill);
    WriteHeights("fine.png", 65, 9, [](int, int) { return 0.5; });
    std::vector<uint8_t> cut = ReadWholeFile(FOLDER / "hill.png");
    cut.resize(cut.size() - 30);
    WriteWholeFile(FOLDER / "cut.png", cut);
    const auto image = [](const std::string& name) { return HillMap("\"image\" \"" + name + "\"\n"); };
    const std::vector<std::pair<MapBuilder, std::string>> cases = {
        {HillMap(""), "a func_terrain has no image"},
        {image("none.png"), "none.png"},
        {image("eight.png"), "eight.png: has 8 bits a channel: save it as a PNG with 16 bits of grey"},
        {image("wide.png"), "wide.png: is 130 x 9 pixels: make each side 2 to 129"},
        {image("fine.png"), "fine.png gives cells of 16 units"},
        {image("cut.png"), "cut.png: "},
        {HillMap().Box({0, 0, 0}, {512, 512, 256}), "a func_terrain has 2 brushes"},
        {MapBuilder(HillMap())
             .BeginEntity("func_terrain", "\"image\" \"hill.png\"\n")
             .TurnedBox({0, 0, 0}, {64, 64, 64}),
         "the brush of a func_terrain is no box"},
        {HillMap("\"image\" \"hill.png\"\n\"high\" \"snow\"\n\"high_from\" \"9\"\n"), "\"snow\" is not in the list"},
    };
    for (const auto& row : cases)
        ExpectRefusal(row.second, [&] { CompileHill(row.first); });
}
