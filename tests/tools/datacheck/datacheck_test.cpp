// A sound level and data folder, and one broken rule at a time.
#include "datacheck/compiled_level.h"
#include "datacheck/folder.h"
#include "datacheck/rules.h"
#include "formats/files.h"
#include "formats/image.h"
#include "mapc/map_builder.h"
#include "mapc/placement.h"
#include "records/levels.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <functional>

namespace fs = std::filesystem;

namespace {

const fs::path ANIMS = SOURCE_FOLDER "/tests/levels/data/game/data/anims";

constexpr int HOUSE = 3;  // a level without a sky

// A hall with a step, a pillar and a lamp; some walls are lit at their corners.
CompiledLevel CompileHall(int number) {
    MapBuilder map;
    map.Room({-400, -400, 0}, {400, 400, 600}).Box({200, -400, 0}, {400, 400, 40}, "floor");
    map.Box({-300, 200, 0}, {-200, 300, 600}, "tall").Start("0 0 64").Light("0 0 300");
    return Compile(map, number);
}

TextureFile TexturesOf(size_t count) {
    TextureFile file;
    file.pages.emplace_back(TEXTURE_PAGE_SIZE, uint8_t{7});
    for (size_t i = 0; i < count; ++i) {
        file.slots.push_back({0, static_cast<uint8_t>(i % 16 * 8), static_cast<uint8_t>(i / 16 * 8), 8, 8});
    }
    return file;
}

// A box of six sides around the eye, its pictures without holes.
StaticObjectFile BoxedSky() {
    StaticObjectFile sky;
    for (int i = 0; i < 8; ++i)
        sky.points.push_back({i & 1 ? 500.f : -500.f, i & 2 ? 577.f : -423.f, i & 4 ? 500.f : -500.f});
    const uint16_t sides[6][4] = {{4, 5, 7, 6}, {1, 0, 2, 3}, {5, 1, 3, 7}, {0, 4, 6, 2}, {6, 7, 3, 2}, {0, 1, 5, 4}};
    const WorldVector normals[6] = {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}};
    for (size_t i = 0; i < 6; ++i) {
        StaticObjectPolygon side{0, {normals[i], i == 4 ? -577.f : i == 5 ? -423.f : -500.f}, {}};
        for (const uint16_t point : sides[i])
            side.corners.push_back({point, 0, 0});
        sky.polygons.push_back(side);
    }
    return sky;
}

LightSlotRecord Lamp(float x, float y, float z) {
    LightSlotRecord slot;
    slot.type = LIGHT_FLICKER;
    slot.position = {x, y, z};
    slot.radius = 300;
    slot.radiusSquared = 90000;
    slot.pointCount = slot.cornerCount = 1;
    slot.highIntensity = 2;
    return slot;
}

LevelData SoundLevel(int number) {
    const CompiledLevel compiled = CompileHall(number);
    LevelData level;
    level.number = number;
    level.folder = "level" + std::to_string(number);
    level.world = compiled.world;
    level.light = compiled.light;
    level.textures = TexturesOf(95);
    const Vec3 start = StartOf(number);
    level.slots = LightSlotFile{};
    level.slots->slots = {Lamp(static_cast<float>(start.x), static_cast<float>(start.y), static_cast<float>(start.z))};
    level.slots->points = {{3, 0.2f}};
    level.slots->corners = {{8, 0.2f}};
    level.sky = BoxedSky();
    return level;
}

std::string Joined(const Report& report) {
    std::string text;
    for (const std::string& line : report.Lines())
        text += line + "\n";
    return text;
}

std::string FindingsOf(const LevelData& level) {
    Report report;
    CheckLevel(level, report);
    return Joined(report);
}

WorldVector& CornerOf(WorldFile& world, size_t polygon, size_t corner) {
    return world.points[world.corners[world.polygons[polygon].firstCorner + corner].point].position;
}

struct Mutation {
    std::string expected;  // part of what is told
    std::function<void(LevelData&)> damage;
};

void ExpectEachIsTold(const std::vector<Mutation>& mutations, int number = HOUSE) {
    const LevelData sound = SoundLevel(number);
    EXPECT_EQ(FindingsOf(sound), "");
    for (const Mutation& mutation : mutations) {
        LevelData level = sound;
        mutation.damage(level);
        const std::string findings = FindingsOf(level);
        EXPECT_NE(findings.find(mutation.expected), std::string::npos)
            << "expected: " << mutation.expected << "\ntold: " << findings;
    }
}

TEST(Datacheck, TellsFaultsOfTheSky) {
    ExpectEachIsTold(
        {
            {"the sky has a hole", [](LevelData& l) { l.sky->polygons.pop_back(); }},
            {"the sky has a hole",
             [](LevelData& l) {
                 l.sky->polygons[2].texture = 20;
                 l.textures->pages[0][8 * 256 + 4 * 8] = 0;
             }},
            {"is turned away from the eye",
             [](LevelData& l) {
                 StaticObjectPolygon& side = l.sky->polygons[0];
                 std::reverse(side.corners.begin(), side.corners.end());
                 side.plane = {{0, 0, -1}, 500};
             }},
            {"from the eye", [](LevelData& l) { l.sky->points[0][0] = -9000; }},
        },
        1);
}

TEST(Datacheck, TellsEachFaultOfALevel) {
    ExpectEachIsTold({
        // the tree
        {"reaches a node twice", [](LevelData& l) { l.world->nodes[0].front = 0; }},
        {"is empty", [](LevelData& l) { l.world->nodes.clear(); }},
        {"hangs 0 times", [](LevelData& l) { l.world->leaves.push_back(l.world->leaves[0]); }},
        {"131070 polygons, at most 65536",
         [](LevelData& l) {
             l.world->leaves[0].polygonCount = 65535;
             l.world->nodes = {l.world->nodes[0]};
             l.world->nodes[0].front = l.world->nodes[0].back = -1;
         }},
        // polygons
        {"clockwise",
         [](LevelData& l) {
             const WorldPolygon& p = l.world->polygons[0];
             std::reverse(l.world->corners.begin() + p.firstCorner,
                          l.world->corners.begin() + p.firstCorner + p.cornerCount);
         }},
        {"off its plane", [](LevelData& l) { l.world->planes[l.world->polygons[2].plane].offset += 1; }},
        {"shorter than 0.1", [](LevelData& l) { CornerOf(*l.world, 1, 0) = CornerOf(*l.world, 1, 1); }},
        {"3 to 12 are possible", [](LevelData& l) { l.world->polygons[0].cornerCount = 2; }},
        {"unknown kind of light", [](LevelData& l) { l.world->polygons[0].shading = 2; }},
        {"from the origin", [](LevelData& l) { l.world->points[0].position[1] = NAN; }},
        {"no texture coordinates", [](LevelData& l) { l.world->corners[0].u = INFINITY; }},
        {"uses texture 93", [](LevelData& l) { l.world->polygons[0].texture = 93; }},
        // boxes and order
        {"its box leaves out a corner:", [](LevelData& l) { l.world->leaves[0].halfExtents[1] -= 1; }},
        {"its box leaves out a corner below it", [](LevelData& l) { l.world->nodes[0].centre[0] += 5; }},
        {"cell of the tree", [](LevelData& l) { std::swap(l.world->nodes[0].front, l.world->nodes[0].back); }},
        {"is drawn over polygon", [](LevelData& l) { std::swap(l.world->nodes[0].front, l.world->nodes[0].back); }},
        {"must be touched last",
         [](LevelData& l) {
             for (WorldLeaf& leaf : l.world->leaves)
                 std::reverse(l.world->polygons.begin() + leaf.firstPolygon,
                              l.world->polygons.begin() + leaf.firstPolygon + leaf.polygonCount);
         }},
        {"the world is open",
         [](LevelData& l) {  // upwards
             for (WorldPolygon& polygon : l.world->polygons)
                 if (l.world->planes[polygon.plane].normal[1] > 0) polygon = l.world->polygons[0];
         }},
        {"above its floor",
         [](LevelData& l) {
             for (WorldPoint& point : l.world->points)
                 point.position[1] += 5;
             for (WorldPlane& plane : l.world->planes)
                 plane.offset -= 5 * plane.normal[1];
         }},
        // sizes
        {"planes: 62001",
         [](LevelData& l) {
             l.world->planes.resize(62001, {{1, 0, 0}, 0});
         }},
        {"run out at the character", [](LevelData& l) { l.characterBytes = 9000000; }},
        {"touches",
         [](LevelData& l) {  // the same floor again and again
             WorldFile& world = *l.world;
             for (WorldLeaf& leaf : world.leaves) {
                 const WorldPolygon first = world.polygons[leaf.firstPolygon];
                 if (world.planes[first.plane].normal[1] > -0.7f) continue;
                 leaf.firstPolygon = static_cast<uint16_t>(world.polygons.size());
                 leaf.polygonCount = 151;
                 world.polygons.insert(world.polygons.end(), 151, first);
             }
         }},
        // light
        {"beyond 0 to 127", [](LevelData& l) { l.light->pointLight[2] = -1; }},
        {"the world has", [](LevelData& l) { l.light->pointLight.pop_back(); }},
        {"no bytes for it", [](LevelData& l) { l.world->polygons[1].shading = WORLD_CORNER_LIGHT; }},
        {"500 is less than the world's", [](LevelData& l) { l.light->farDistance = 500; }},
        {"fade distance 0: even the room in front of the player", [](LevelData& l) { l.light->fadeDistance = 0; }},
        {"1 to 300 show anything", [](LevelData& l) { l.light->contrast = 0; }},
        {"0 to 3 exist", [](LevelData& l) { l.light->lightMode = 4; }},
        {"beyond 0 to 63", [](LevelData& l) { l.light->darkColour[1] = 64; }},
        {"141, at most 140", [](LevelData& l) { l.slots->slots.resize(141); }},
        {"unknown type 9", [](LevelData& l) { l.slots->slots[0].type = 9; }},
        {"and its square", [](LevelData& l) { l.slots->slots[0].radiusSquared = 300; }},
        {"and its square", [](LevelData& l) { l.slots->slots[0].radius = 0; }},
        {"above its high one", [](LevelData& l) { l.slots->slots[0].lowIntensity = 3; }},
        {"point 60000: is no part", [](LevelData& l) { l.slots->points[0].index = 60000; }},
        {"corner 8: gets nan light bytes", [](LevelData& l) { l.slots->corners[0].weight = NAN; }},
        {"has a cycle that stands still", [](LevelData& l) { l.slots->slots[0].type = LIGHT_BLINK; }},
        {"which its type never uses", [](LevelData& l) { l.slots->slots[0].type = LIGHT_DYNAMIC; }},
        {"31 slots reach the character",
         [](LevelData& l) {
             const LightSlotRecord lamp = l.slots->slots[0];
             l.slots->slots.assign(31, lamp);
         }},
        // textures
        {"94 textures, 95 are needed", [](LevelData& l) { l.textures->slots.pop_back(); }},
        {"differs in size", [](LevelData& l) { l.textures->slots[12].width = 16; }},
        {"differs from texture 14",
         [](LevelData& l) { l.textures->pages[0][size_t{l.textures->slots[14].x} + 2] = 9; }},
        {"/03.3df: is 8 x 4 texels",
         [](LevelData& l) {
             l.glideTextures[3] = {8, 4, 1};
         }},
    });
}

TEST(Datacheck, IsAskedBeforeALevelIsWritten) {
    MapBuilder map;
    map.Room({0, 0, 0}, {1024, 1024, 512}).Start("64 64 64");
    CompileFiles files{.map = "hall.map", .materials = {}, .output = {}, .level = HOUSE};
    CheckCompiled(Compile(map, HOUSE), files, {TestMaterials()});
    MapBuilder open;
    open.Box({512, 0, -8}, {1024, 1024, 0}, "sky")
        .Box({0, 0, -8}, {512, 1024, 0})
        .Box({-16, -16, 512}, {1040, 1040, 528});
    open.Box({-16, -16, -8}, {0, 1040, 512}).Box({1024, -16, -8}, {1040, 1040, 512});
    open.Box({0, -16, -8}, {1024, 0, 512}).Box({0, 1024, -8}, {1024, 1040, 512}).Start("64 64 64");
    ExpectRefusal("hall.map: seen from (384 512 60): the world is open towards",
                  [&] { CheckCompiled(Compile(open, HOUSE), files, {TestMaterials()}); });
}

TEST(Datacheck, NamesEachPlaceWhereAJumpPassesACeiling) {
    // Low at both ends, where there is a slab below one ceiling; and a crate below the other, lower than a player.
    const auto hall = [](const std::string& guards) {
        MapBuilder map;
        map.guards = guards;
        map.Room({0, 0, 0}, {2000, 600, 700}).Box({0, 0, 300}, {500, 600, 700}).Start("1000 300 64");
        map.Box({1500, 0, 300}, {2000, 600, 700}).Box({1500, 0, 148}, {2000, 600, 164}, "clip");
        return map.Box({0, 0, 0}, {200, 600, 160});
    };
    const auto notesOf = [&](const std::string& guards) {
        const CompileFiles files{.map = "hall.map", .materials = {}, .output = {}, .level = HOUSE};
        return CheckCompiled(Compile(hall(guards), HOUSE), files, {TestMaterials()});
    };
    const std::vector<std::string> notes = notesOf("");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NE(notes[0].find("a jump lifts the player's head 149 into the ceiling, which is 300 above the floor"),
              std::string::npos)
        << notes[0];
    EXPECT_EQ(notesOf("ceilings").size(), 0U);
}

TEST(Datacheck, TakesTheSizeOfABoxWhateverItsSign) {
    LevelData level = SoundLevel(HOUSE);
    const auto negate = [](auto& record) {
        for (float& half : record.halfExtents)
            half = -half;
    };
    std::for_each(level.world->nodes.begin(), level.world->nodes.end(), negate);
    std::for_each(level.world->leaves.begin(), level.world->leaves.end(), negate);
    EXPECT_EQ(FindingsOf(level), "");
}

CharacterData SoundCharacter() {
    CharacterData character;
    character.mesh = DecodeMesh(ReadWholeFile(ANIMS / "zero.msh"), "zero.msh");
    character.weights = DecodeWeights(ReadWholeFile(ANIMS / "zero.wei"), "zero.wei");
    character.skins["zero.tuv"] = DecodeSkin(ReadWholeFile(ANIMS / "zero.tuv"), "zero.tuv");
    character.clips["zerorun.anm"] = DecodeAnimation(ReadWholeFile(ANIMS / "zerorun.anm"), "zerorun.anm");
    return character;
}

TEST(Datacheck, TellsFaultsOfTheCharacter) {
    const std::pair<const char*, std::function<void(CharacterData&)>> rows[] = {
        {"has 21 bones", [](auto& c) { c.mesh->boneCount = 21; }},
        {"points: 501", [](auto& c) { c.mesh->points.resize(501); }},
        {"the mesh 1", [](auto& c) { c.mesh->triangles.resize(1); }},
        {"the skin's texture 2", [](auto& c) { c.skins["zero.tuv"][5].texture = 2; }},
        {"has 21 blocks", [](auto& c) { c.weights->pop_back(); }},
        {"is no point of the mesh", [](auto& c) { (*c.weights)[0].hard[0] = 60000; }},
        {"is blended before it is placed", [](auto& c) { std::reverse(c.weights->begin(), c.weights->end()); }},
        {"is moved by no bone", [](auto& c) { (*c.weights)[0].hard.pop_back(); }},
        {"is placed more than once", [](auto& c) { (*c.weights)[0].hard.push_back((*c.weights)[0].hard[0]); }},
        {"tracks for 21 bones", [](auto& c) { c.clips["zerorun.anm"].bones.pop_back(); }},
        {"is posed 2 times", [](auto& c) { c.clips["zerorun.anm"].commands.push_back(7); }},
        {"is no rotation", [](auto& c) { c.clips["zerorun.anm"].bones[3].rotations[1].rotation[0] += 1; }},
    };
    const CharacterData sound = SoundCharacter();
    const auto findingsOf = [](const CharacterData& character) {
        Report report;
        CheckCharacter(character, report);
        return Joined(report);
    };
    EXPECT_EQ(findingsOf(sound), "");
    for (const auto& [expected, damage] : rows) {
        CharacterData character = sound;
        damage(character);
        EXPECT_NE(findingsOf(character).find(expected), std::string::npos) << expected;
    }
}

class DataFolder : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / "tarnwick_datacheck_test";
        fs::remove_all(folder_);
        const std::vector<uint8_t> glideTexture = EncodeGlideTexture(MakeMipLevels(Image(8, 8)));
        for (int number = 1; number <= LEVEL_COUNT; ++number) {
            const LevelData level = SoundLevel(number);
            const fs::path at = folder_ / "game/data/levels" / level.folder;
            WriteWholeFile(at / fs::path(level.WorldPath()).filename(), EncodeWorld(*level.world));
            WriteWholeFile(at / "Lights.LMP", EncodeLightMap(*level.light));
            WriteWholeFile(at / "lights.alt", EncodeLightSlots(*level.slots));
            WriteWholeFile(at / "sky.sob", EncodeStaticObject(*level.sky, "sky.sob"));
            WriteWholeFile(at / "texture.bin", EncodeTextureFile(*level.textures));
            for (size_t i = 0; i < level.textures->slots.size(); ++i)
                WriteWholeFile(folder_ / "game/data/levels" / level.GlideTexturePath(i), glideTexture);
        }
        fs::copy(ANIMS, folder_ / "game/data/anims");
        for (const char* name :
             {"Title.Bmp", "Options.Bmp", "LoadSave.Bmp", "Lang.Bmp", "Select01.bmp", "Select02.bmp"})
            WriteWholeFile(folder_ / "FrontEnd" / name, EncodeBitmap(Image(640, 480)));
    }

    std::string Findings() const {
        Report report;
        CheckDataFolder(folder_, report);
        EXPECT_EQ(report.HasProblems(), !report.Lines().empty());
        return Joined(report);
    }

    fs::path folder_;
};

TEST_F(DataFolder, IsCheckedFileByFile) {
    EXPECT_EQ(Findings(), "");
    fs::remove(folder_ / "game/data/levels/level6/swamp.bgm");
    fs::remove(folder_ / "game/data/levels/level5/lights.alt");  // optional
    fs::resize_file(folder_ / "game/data/levels/level2/texture.bin", 5000);
    WriteWholeFile(folder_ / "FrontEnd/Lang.Bmp", EncodeBitmap(Image(640, 400)));
    WriteWholeFile(folder_ / "FrontEnd/Title.Bmp", {'B', 'M'});
    fs::remove(folder_ / "game/data/levels/level4/glidetex/07.3df");
    fs::resize_file(folder_ / "game/data/levels/level4/glidetex/08.3df", 100);
    fs::remove(folder_ / "game/data/anims/zerorun.anm");
    const std::string findings = Findings();
    EXPECT_EQ(std::count(findings.begin(), findings.end(), '\n'), 7) << findings;
    for (const char* expected :
         {"level6/swamp.bgm: is missing", "level2/texture.bin: ", "FrontEnd/Lang.Bmp: is 640 x 400", "Title.Bmp: ",
          "level4/glidetex/07.3df: is missing", "level4/glidetex/08.3df: has 100 bytes", "zerorun.anm: is missing"})
        EXPECT_NE(findings.find(expected), std::string::npos) << expected << " in\n" << findings;
}

TEST_F(DataFolder, MustExist) {
    folder_ /= "none";
    EXPECT_NE(Findings().find("is not a folder"), std::string::npos);
}

}  // namespace
