// Prefabs that a map places: what joins the map, and how faults in them are named.
#include "map_builder.h"
#include "mapc/instances.h"
#include "mapc/texture_axes.h"
#include "support/content_error.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

const fs::path FOLDER = fs::path(testing::TempDir()) / "instances";

void Write(const std::string& name, const std::string& text) {
    fs::create_directories((FOLDER / name).parent_path());
    std::ofstream(FOLDER / name) << text;
}

std::string Instance(const std::string& file, const std::string& keys) {
    return fmt::format("{{\n\"classname\" \"func_instance\"\n\"file\" \"{}\"\n{}\n}}\n", file, keys);
}

MapBuilder Room() {
    return MapBuilder().Room({0, 0, 0}, {1024, 1024, 512}).Start("64 64 64");
}

PlacedMap Read(const std::string& map) {
    Write("levels/test.map", map);
    return ReadPlacedMap(FOLDER / "levels/test.map", FOLDER / "prefabs");
}

const MapEntity& LastOf(const PlacedMap& placed, const std::string& className) {
    const auto& entities = placed.map.entities;
    return *std::find_if(entities.rbegin(), entities.rend(),
                         [&](const MapEntity& entity) { return entity.ClassName() == className; });
}

}  // namespace

TEST(Instances, APrefabIsCompiledAsIfItWereWrittenWhereItStands) {
    const auto post = [](int x, int y, const std::string& texture) {
        return MapBuilder()
            .Box({x, y, 0}, {x + 48, y + 32, 200}, texture)
            .BeginEntity("func_detail")
            .Box({x - 32, y, 200}, {x + 80, y + 32, 232}, "wall");
    };
    Write("prefabs/post.map", post(0, 0, "tall").Light("24 16 240", "\"radius\" \"300\"\n").Start("0 0 0").Text());
    const PlacedMap placed =
        Read(Room().Text() + Instance("post.map", "\"origin\" \"256 384 0\"\n\"replace01\" \"tall floor\""));
    EXPECT_EQ(placed.files, (std::vector<fs::path>{FOLDER / "levels/test.map", FOLDER / "prefabs/post.map"}));

    // Whole repeats away from the prefab's origin, so that textures written there lie the same.
    MapBuilder byHand = Room().BeginEntity("func_group").Box({256, 384, 0}, {304, 416, 200}, "floor");
    byHand.BeginEntity("func_detail")
        .Box({224, 384, 200}, {336, 416, 232})
        .Light("280 400 240", "\"radius\" \"300\"\n");
    const CompiledLevel level = CompileMap(placed.map, {TestMaterials()}, 0, FAST_LIGHT);
    EXPECT_EQ(EncodeWorld(level.world), EncodeWorld(Compile(byHand).world));
    EXPECT_EQ(EncodeLightMap(level.light), EncodeLightMap(Compile(byHand).light));
}

TEST(Instances, NestedPrefabsTurnWithTheirTexturesAndLights) {
    Write("prefabs/inner.map", MapBuilder().Box({8, 0, 0}, {40, 24, 64}).Light("100 0 50").Text());
    Write("prefabs/set/outer.map",
          MapBuilder().Text() + Instance("../inner.map", "\"origin\" \"64 0 0\"\n\"angles\" \"0 60 0\""));
    const PlacedMap placed =
        Read(Room().Text() + Instance("set/outer.map", "\"origin\" \"500 500 8\"\n\"angles\" \"0 30 0\""));
    const std::optional<Vec3> lamp = VectorKey(LastOf(placed, "light"), "origin");
    EXPECT_LT(Length(*lamp - Vec3{500 + 64 * std::sqrt(0.75), 500 + 32 + 100, 58}), 1e-9);

    const MapFile inner = ReadMapFile(FOLDER / "prefabs/inner.map");
    const std::vector<MapFace>& before = inner.entities[0].brushes[0].faces;
    const std::vector<MapFace>& after = LastOf(placed, "func_group").brushes[0].faces;
    ASSERT_EQ(before.size(), after.size());
    const Material wall = TestMaterials()[0];
    for (size_t i = 0; i < before.size(); ++i) {
        const auto texture = [&](const MapFace& face) {
            const Vec3 out = Cross(face.points[2] - face.points[0], face.points[1] - face.points[0]);
            return TextureOf(face, out * (1 / Length(out)), wall);
        };
        for (size_t p = 0; p < 3; ++p) {
            EXPECT_NEAR(texture(before[i]).U(before[i].points[p]), texture(after[i]).U(after[i].points[p]), 1e-6);
            EXPECT_NEAR(texture(before[i]).V(before[i].points[p]), texture(after[i]).V(after[i].points[p]), 1e-6);
        }
    }
}

TEST(Instances, FaultsNameThePrefabAndWhereItStands) {
    const std::string at = "\"origin\" \"300 300 0\"";
    const auto compile = [&](const std::string& instances) {
        return [instances] { CompileMap(Read(Room().Text() + instances).map, {TestMaterials()}, 0, FAST_LIGHT); };
    };
    const std::string flat = "( 0 0 0 ) ( 0 1 0 ) ( 0 0 1 ) wall 0 0 0 1 1\n";
    Write("prefabs/flat.map", MapBuilder().Brush(flat).Text());
    ExpectRefusal("prefabs/flat.map:3: the brush has no volume (placed by " + (FOLDER / "levels/test.map:").string(),
                  compile(Instance("flat.map", at)));
    Write("prefabs/odd.map", MapBuilder().BeginEntity("func_door").Text());
    ExpectRefusal("prefabs/odd.map:4: unknown entity func_door", compile(Instance("odd.map", at)));
    Write("prefabs/hill.map", MapBuilder().BeginEntity("func_terrain").Text());
    ExpectRefusal("prefabs/hill.map:4: a prefab holds a func_terrain", compile(Instance("hill.map", at)));

    Write("prefabs/a.map", MapBuilder().Text() + Instance("b.map", at));
    Write("prefabs/b.map", MapBuilder().Text() + Instance("a.map", at));
    ExpectRefusal("a map holds itself: test.map -> a.map -> b.map -> a.map", compile(Instance("a.map", at)));
    // A chain that is met from its inner end first is as deep as it is.
    Write("prefabs/deep0.map", MapBuilder().Text());
    for (size_t i = 1; i <= INSTANCE_DEPTH_MAX; ++i)
        Write(fmt::format("prefabs/deep{}.map", i),
              MapBuilder().Text() + Instance(fmt::format("deep{}.map", i - 1), at));
    ExpectRefusal("no error", compile(Instance("deep7.map", at)));
    ExpectRefusal("nested more than 8 deep", compile(Instance("deep8.map", at)));
    ExpectRefusal("nested more than 8 deep", compile(Instance("deep4.map", at) + Instance("deep8.map", at)));

    ExpectRefusal("the prefab \"lost.map\" is neither in", compile(Instance("lost.map", at)));
    ExpectRefusal("a func_instance has no file", compile(Instance("", at)));
    ExpectRefusal("is tilted", compile(Instance("deep0.map", at + "\n\"angles\" \"5 0 0\"")));
    ExpectRefusal("name two textures", compile(Instance("deep0.map", at + "\n\"replace1\" \"wall\"")));
    ExpectRefusal("unknown key angle of a func_instance", compile(Instance("deep0.map", at + "\n\"angle\" \"5\"")));
}
