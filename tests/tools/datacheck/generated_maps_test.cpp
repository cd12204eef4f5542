// The map compiler and datacheck agree: on maps of odd brushes, made at random, at every scale. What mapc lets through
// is sound once it is written and read again; what breaks a rule in the file it refuses.
//
// TARNWICK_GENERATED_MAPS is the number of maps at each of the four scales; 100 take a minute.
#include "datacheck/compiled_level.h"
#include "datacheck/rules.h"
#include "mapc/map_builder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

constexpr int HOUSE = 3;  // a level without a sky
constexpr int ROOM = 1536;

class Generator {
public:
    explicit Generator(unsigned seed) : random_(seed) {}

    // An open map has sky for a part of its floor, which no level may.
    MapBuilder Map(const char* scale, bool isOpen) {
        MapBuilder map;
        map.skirts = Next(2) == 0;
        map.Key("scale", scale).Key("far_distance", "16000").Room({0, 0, 0}, {ROOM, ROOM, 768});
        if (isOpen) map.Box({256, 0, 0}, {512, ROOM, 64}, "sky");
        map.Start(fmt::format("64 64 {}", 500 + Next(100)));
        const int count = 6 + Next(12);
        for (int i = 0; i < count; ++i)
            Piece(map);
        for (int i = Next(4); i >= 0; --i)
            map.Light(fmt::format("{} {} 700", 100 + Next(1300), 100 + Next(1300)),
                      Next(2) == 0 ? "" : "\"style\" \"flicker\"\n");
        return map;
    }

private:
    int Next(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void Piece(MapBuilder& map) {
        const int x = 150 + Next(1150), y = 150 + Next(1150), height = 16 + Next(500);
        switch (Next(5)) {
        case 0: map.Wedge(x, y, height); break;
        case 1: map.TurnedBox({x, y, 0}, {x + 50 + Next(150), y + 50 + Next(150), height}, "tall"); break;
        case 2: Panel(map, x, y, height); break;
        case 3: map.Box({x, y, 8 * Next(20)}, {x + 16 + Next(200), y + 16 + Next(200), 160 + height}, "floor"); break;
        default: map.Box({x, y, 0}, {x + 64, y + 64, 64}, Next(2) == 0 ? "grate" : "clip");
        }
    }

    // An eighth of a unit thick, and aslant by a hair.
    void Panel(MapBuilder& map, int x, int y, int height) {
        const double lean = Next(100) / 100.0;
        const auto point = [](double px, double py, double pz) { return fmt::format("( {} {} {} ) ", px, py, pz); };
        const auto face = [](const std::string& points) { return points + "wall 0 0 0 2 2\n"; };
        const double east = x + 180.0, thick = y + 0.125, top = height;
        map.Brush(face(point(x, y, 0) + point(x, y + 1, 0) + point(x, y, 1)) +
                  face(point(east, y, 0) + point(east, y, 1) + point(east, y + 1, 0)) +
                  face(point(x, y, 0) + point(x, y, 1) + point(east, y + lean, 0)) +
                  face(point(x, thick, 0) + point(east, thick + lean, 0) + point(x, thick, 1)) +
                  face(point(x, y, 0) + point(x + 1, y, 0) + point(x, y + 1, 0)) +
                  face(point(x, y, top) + point(x, y + 1, top) + point(x + 1, y, top)));
    }

    std::mt19937 random_;  // the same numbers everywhere
};

// What datacheck finds in the files of the level.
std::vector<std::string> FaultsInTheFiles(const CompiledLevel& compiled) {
    LevelData level;
    level.number = HOUSE;
    level.world = DecodeWorld(EncodeWorld(compiled.world), "world");
    level.light = DecodeLightMap(EncodeLightMap(compiled.light), "light");
    level.slots = DecodeLightSlots(EncodeLightSlots(compiled.slots), "slots");
    for (const Material& material : TestMaterials())
        if (material.flags & MATERIAL_CLIP) level.unseenSlots.push_back(material.slot);
    Report report;
    CheckLevel(level, report);
    std::vector<std::string> lines = report.Lines();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("note: "); });
    return lines;
}

// What the compiler says instead of writing it; empty: nothing.
std::string Refusal(const CompiledLevel& compiled) {
    try {
        CheckCompiled(compiled, {.map = "test.map", .materials = {}, .output = {}, .level = HOUSE}, {TestMaterials()});
        return "";
    } catch (const ContentError& error) {
        return error.what();
    }
}

constexpr unsigned USUAL_MAPS = 6;  // at each scale

}  // namespace

TEST(GeneratedMaps, AreTakenByBothOrByNeither) {
    const char* const asked = std::getenv("TARNWICK_GENERATED_MAPS");
    const unsigned maps = asked ? static_cast<unsigned>(std::max(1, std::atoi(asked))) : USUAL_MAPS;
    for (const char* scale : {"1", "2", "3", "4"}) {
        for (unsigned seed = 0; seed < maps; ++seed) {
            SCOPED_TRACE(fmt::format("map {} at scale {}", seed, scale));
            const bool isOpen = seed % 6 == 5;
            const CompiledLevel compiled = Compile(Generator(seed).Map(scale, isOpen), HOUSE);
            const std::vector<std::string> faults = FaultsInTheFiles(compiled);
            const std::string refusal = Refusal(compiled);
            EXPECT_EQ(faults.empty(), refusal.empty()) << (faults.empty() ? refusal : faults[0]);
            EXPECT_EQ(refusal.empty(), !isOpen) << refusal;
        }
    }
}
