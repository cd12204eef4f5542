// Maps from elsewhere, taken all the way: converted, compiled, asked the checker's rules, and played.
#include "mapconvert/convert.h"

#include "datacheck/compiled_level.h"
#include "foreign_map.h"
#include "formats/picture_scale.h"
#include "mapc/compile.h"
#include "program/run_program.h"
#include "skyc/compile.h"
#include "support/content_error.h"
#include "texc/level_textures.h"
#include "tools/mapc/map_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

namespace {

constexpr int OPEN_LEVEL = 5;
const fs::path RULES = SOURCE_FOLDER "/content/foreign.toml";

ConvertedMap ConvertIn(const fs::path& folder, const std::string& text) {
    WriteForeignTextures(folder);
    WriteWholeFile(folder / "away.map", {text.begin(), text.end()});
    return ConvertMap({folder / "away.map", RULES, {}, {}});
}

// The converted map's level in a copy of the test levels' data.
void CompileInto(const fs::path& converted, const fs::path& data) {
    fs::copy(SOURCE_FOLDER "/tests/levels/data", data, fs::copy_options::recursive);
    const fs::path level = data / fmt::format("game/data/levels/level{}", OPEN_LEVEL);
    for (const char* skin : {"tarnwick_body", "tarnwick_head"})
        WritePng(converted / "materials" / (std::string(skin) + ".png"), Image(128, 128, {90, 90, 90, 255}));
    const CompiledTextures textures =
        CompileTextures(ReadLevelTextures(converted / "textures.toml"), converted / "materials");
    WriteMaterialList(converted / "materials.txt", {textures.list, textures.dark});
    WriteWholeFile(level / "texture.bin", EncodeTextureFile(textures.textures));
    WriteGlideTextures(level / "glidetex", textures);
    CompileFiles files{converted / "away.map", converted / "materials.txt", level, OPEN_LEVEL};
    files.bake = {LightQuality::Fast, 1, {}};
    files.check = CheckCompiled;
    CompileToFiles(files);
    CompileSkyToFile(converted / "sky.toml", converted / "materials.txt", level / "sky.sob");
}

struct Walk {
    double ahead = 0, down = 0;  // engine units from where it began
};

// Where the player is who runs on for ten seconds.
Walk RunAhead(const ProgramRun& game, const fs::path& data) {
    game.Write("run.txt", "2 down UP\n700 quit\n");
    const ProgramResult result = game.Run(
        fmt::format("--log /dev/null --headless --data '{}' --disc '{}' --level {} --script run.txt --trace walk.txt",
                    data.string(), (data / "disc").string(), OPEN_LEVEL));
    EXPECT_EQ(result.status, 0) << result.errors;
    std::istringstream lines(game.Read("walk.txt"));
    std::array<double, 3> first{}, last{};
    for (std::string line; std::getline(lines, line);) {
        const size_t at = line.find("\"pos\":[");
        if (at == std::string::npos || line.find("\"level\":5") == std::string::npos) continue;
        std::sscanf(line.c_str() + at, "\"pos\":[%lf,%lf,%lf", &last[0], &last[1], &last[2]);
        if (first == std::array<double, 3>{}) first = last;
    }
    return {last[2] - first[2], last[1] - first[1]};
}

size_t Notes(const ConvertedMap& map, const std::string& text) {
    return static_cast<size_t>(std::count_if(map.notes.begin(), map.notes.end(), [&](const std::string& note) {
        return note.find(text) != std::string::npos;
    }));
}

const MapEntity& EntityOf(const ConvertedMap& map, const std::string& className) {
    return *std::find_if(map.map.entities.begin(), map.map.entities.end(),
                         [&](const MapEntity& entity) { return entity.ClassName() == className; });
}

}  // namespace

TEST(Convert, AMapOfTheUsualKindIsCompiledCheckedAndPlayed) {
    const ProgramRun game;
    for (const bool axes : {false, true}) {
        SCOPED_TRACE(axes);
        const fs::path folder = game.Folder() / (axes ? "axes" : "standard");
        WriteConverted(ConvertIn(folder, ForeignMap(axes)), folder / "away.map", folder / "ours");
        ASSERT_NO_THROW(CompileInto(folder / "ours", folder / "data"));
        // Through the door, 396 units away at a scale of 3, to the wall of sky, 940 away, which stops him.
        const Walk walk = RunAhead(game, folder / "data");
        EXPECT_GT(walk.ahead, 2600);
        EXPECT_LT(walk.ahead, 2820);
        EXPECT_GT(walk.down, -10);
    }
}

TEST(Convert, WhatOurMapsDoNotHaveIsAdaptedOrTold) {
    const ConvertedMap map = ConvertIn(fs::path(testing::TempDir()) / "away", ForeignMap(false));
    for (const char* note :
         {"3 monster_large: skipped", "1 func_wall: became detail", "1 func_door: left out with their brushes",
          "1 trigger_once: left out", "light: became light; without use: delay, target",
          "1 brushes are left out for their textures", "1 broken brushes are left out", "1 patchDef2 left out",
          "1 lamps in brushes are moved out of them, 0 are left out", "the start looks along 0 degrees instead of 350",
          "2 textures have no picture, and show their names: *slime0, nowhere/gone"})
        EXPECT_EQ(Notes(map, note), 1U) << note << "\n" << fmt::format("{}", fmt::join(map.notes, "\n"));
    EXPECT_EQ(EntityOf(map, "info_player_start").Find("origin")->value, "100 256 30")
        << "of the two the one in the open";
    EXPECT_EQ(EntityOf(map, "info_player_start").Find("angle")->value, "0");
    EXPECT_EQ(EntityOf(map, "worldspawn").Find("scale")->value, "3");
    EXPECT_EQ(EntityOf(map, "worldspawn").Find("ambient")->value, "16");
    const MapEntity& lamp = EntityOf(map, "light");
    EXPECT_EQ(lamp.Find("light")->value, "100");
    EXPECT_EQ(lamp.Find("radius")->value, "500") << "a wait of a half reaches twice as far";

    const auto& pictures = map.painting.pictures;
    EXPECT_EQ(pictures.size(), 8U) << "ground, fence, slime, gone, sky, the wall by three names, and no door";
    EXPECT_EQ(pictures.at("nowhere_gone"), NamedChecker("nowhere/gone"));
    EXPECT_EQ(pictures.at("ground1_1").pixels[0], (Rgba{200, 0, 0, 255})) << "the file's own colours";
    EXPECT_EQ(pictures.at("_fence").pixels[1].a, 0) << "holes";
    EXPECT_EQ(pictures.at("_fence").pixels[0], (Rgba{200, 200, 200, 255}));
    EXPECT_EQ(map.painting.sky, "sky1");
    EXPECT_EQ(pictures.at("sky1").width, 128) << "the right half of 256";
    int primitives = 0;
    for (const MapBrush& brush : EntityOf(map, "worldspawn").brushes) {
        for (const MapFace& face : brush.faces) {
            EXPECT_FALSE(face.texture.empty());
            if (!face.texture.starts_with("base_wall")) continue;
            const double across = face.uScale / (face.hasAxes ? Length(face.uAxis) : 1);
            const double down = face.vScale / (face.hasAxes ? Length(face.vAxis) : 1);
            EXPECT_NEAR(across * pictures.at("base_wall").width, 96, 1e-9) << "repeated as often as before";
            EXPECT_NEAR(down * pictures.at("base_wall").height, 48, 1e-9);
            primitives += face.hasAxes ? 1 : 0;
        }
    }
    EXPECT_EQ(primitives, 6);
}

// More textures than a level has slots, all larger than its pages hold.
TEST(Convert, TooManyTexturesShareAndShrinkTheirPictures) {
    MapBuilder rooms;
    rooms.Room({0, 0, 0}, {2048, 2048, 256}, "t0");
    const fs::path folder = fs::path(testing::TempDir()) / "many";
    fs::create_directories(folder / "textures");
    for (int i = 0; i < 100; ++i) {
        const int x = 100 + i % 10 * 190, y = 100 + i / 10 * 190, size = 40 + i;
        rooms.Box({x, y, 0}, {x + size, y + size, 40 + i}, fmt::format("T{}", i));
        WritePng(folder / fmt::format("textures/t{}.png", i),
                 Image(256, 160, {static_cast<uint8_t>(i * 2), 50, 50, 255}));
    }
    const ConvertedMap map = ConvertIn(folder, rooms.Start("20 20 30").Text());
    EXPECT_EQ(map.painting.pictures.size(), 87U);
    EXPECT_EQ(Notes(map, "100 textures, 87 are possible; those that cover least share pictures: t13 shows t14"), 1U)
        << fmt::format("{}", fmt::join(map.notes, "\n"));
    EXPECT_EQ(Notes(map, "pictures are shown smaller to find room in 12 pages: t14"), 1U);
    EXPECT_EQ(map.painting.pictures.at("t0").width, 128) << "what covers most stays sharp";
    WriteConverted(map, "many.map", folder / "ours");
    for (const char* skin : {"zero_body", "zero_head"})
        WritePng(folder / "ours/materials" / (std::string(skin) + ".png"), Image(128, 128));
    EXPECT_NO_THROW(CompileTextures(ReadLevelTextures(folder / "ours/textures.toml"), folder / "ours/materials"));
}

TEST(Convert, HopelessMapsAndFilesAreRefused) {
    const fs::path folder = fs::path(testing::TempDir()) / "hopeless";
    MapBuilder room = MapBuilder().Room({0, 0, 0}, {512, 512, 256});
    ExpectRefusal("there is no start", [&] { ConvertIn(folder, room.Text()); });
    ExpectRefusal("none of 1 starts is above a floor", [&] { ConvertIn(folder, room.Start("0 0 -99").Text()); });
    ExpectRefusal("no brush that can be seen", [&] { ConvertIn(folder, MapBuilder().Start("0 0 0").Text()); });
    const std::vector<uint8_t> wad = WadBytes(true, {{"a", 16, 16, 1}});
    for (size_t size = 0; size < wad.size(); ++size) {
        const std::vector<uint8_t> cut(wad.begin(), wad.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_THROW(ReadWad(cut, "cut.wad"), ContentError) << size;
    }
    std::vector<uint8_t> beyond = wad;
    beyond[beyond.size() - 32] = 255;  // the entry's place
    EXPECT_TRUE(ReadWad(beyond, "beyond.wad").pictures.empty());
    std::vector<uint8_t> huge = wad;
    huge[12 + 18] = 1;  // 65,552 pixels wide
    ExpectRefusal("is 65552 x 16 pixels", [&] {
        const WadFile file = ReadWad(huge, "huge.wad");
        DecodeWadPicture(file, file.pictures[0], GreyPalette());
    });
}
