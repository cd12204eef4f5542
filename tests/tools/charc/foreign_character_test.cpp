// A rigged model as another author's program might export it, foreign.glb: z up, centimetres, an armature that turns
// and scales it all, bones at any angle, other names, two joints too many. foreign_points.txt says where its vertices
// are by the rules of its format: clip, key, place in the frame of the actor's position. dense.glb is the same with
// more triangles than the game can take.
#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "formats/files.h"
#include "formats/image.h"
#include "game_character.h"
#include "support/content_error.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>

namespace fs = std::filesystem;

namespace {

const fs::path SOURCE = SOURCE_FOLDER "/tests/tools/charc";

// The recipe and its model in a folder of their own, to be changed before they are compiled.
struct Fixture {
    fs::path folder = fs::path(testing::TempDir()) / "charc";
    std::string recipe = Text(SOURCE / "foreign.toml");

    Fixture() {
        fs::create_directories(folder);
        for (const char* model : {"foreign.glb", "dense.glb"})
            fs::copy_file(SOURCE / model, folder / model, fs::copy_options::overwrite_existing);
        WritePng(folder / "skin.png", Image(64, 32));
    }

    static std::string Text(const fs::path& file) {
        const std::vector<uint8_t> bytes = ReadWholeFile(file);
        return {bytes.begin(), bytes.end()};
    }
    CharacterRecipe Write() const {
        WriteWholeFile(folder / "character.toml", {recipe.begin(), recipe.end()});
        return ReadRecipe(folder / "character.toml");
    }
    CompiledCharacter Compile() const { return CompileCharacter(Write()); }
    void Replace(const std::string& what, const std::string& by) {
        const size_t at = recipe.find(what);
        ASSERT_NE(at, std::string::npos) << what;
        recipe.replace(at, what.size(), by);
    }
};

float NearestDistance(const Vec3& point, const std::vector<Vec3>& others) {
    float nearest = 1e9;
    for (const Vec3& other : others)
        nearest = std::min(nearest, std::hypot(point.x - other.x, point.y - other.y, point.z - other.z));
    return nearest;
}

using ForeignCharacter = GameCharacter;

TEST_F(ForeignCharacter, IsSkinnedByTheGameAsByItsOwnFormat) {
    const Fixture fixture;
    fixture.Write();
    CompileToFolder(fixture.folder / "character.toml", fixture.folder / "game");
    Load(fixture.folder / "game");
    std::map<std::pair<size_t, uint32_t>, std::vector<Vec3>> expected;  // by clip and key
    std::ifstream file(SOURCE / "foreign_points.txt");
    size_t clip = 0;
    uint32_t key = 0;
    for (Vec3 point; file >> clip >> key >> point.x >> point.y >> point.z;)
        expected[{clip, key}].push_back(point);
    ASSERT_EQ(expected.size(), 6u);
    for (const auto& [pose, vertices] : expected) {
        const std::vector<Vec3> points = PointsAt(CHARACTER_CLIPS[pose.first].file, 10 + 100 * pose.second);
        for (const Vec3& point : points)
            ASSERT_LT(NearestDistance(point, vertices), 0.03) << pose.first << ", key " << pose.second;
        for (const Vec3& vertex : vertices)
            ASSERT_LT(NearestDistance(vertex, points), 0.03) << pose.first << ", key " << pose.second;
    }
}

TEST_F(ForeignCharacter, QuaternionsStayOnOneSideAndKeysStandAsListed) {
    for (const OutputFile& file : Fixture().Compile().files) {
        if (file.path.extension() != ".anm") continue;
        const CharacterAnimation animation = DecodeAnimation(file.content, file.path.string());
        EXPECT_EQ(animation.length, 410U);
        for (const BoneTracks& bone : animation.bones)
            for (size_t k = 1; k < bone.rotations.size(); ++k) {
                const auto& a = bone.rotations[k - 1].rotation;
                const auto& b = bone.rotations[k].rotation;
                EXPECT_GE(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3], 0) << file.path;
                EXPECT_EQ(bone.rotations[k].time, 10 + 100 * k);
            }
    }
}

// A bone's own keys hold the pose that keys of all bones hold at those times.
TEST_F(ForeignCharacter, APartOfItTurnsAtTimesOfItsOwn) {
    const auto backOf = [](const std::string& keys) {
        Fixture fixture;
        fixture.Replace("keys = [10, 110, 210, 310, 410]", keys);
        for (const OutputFile& file : fixture.Compile().files) {
            if (file.path == "zeroback.anm") return DecodeAnimation(file.content, file.path.string());
        }
        return CharacterAnimation();
    };
    const CharacterAnimation whole = backOf("keys = [10, 60, 210, 330, 410]");
    const CharacterAnimation parts =
        backOf("keys = [10, 210, 410]\n[[clip.part]]\njoints = ['Bip.000', 'Bip.006']\nkeys = [10, 60, 330, 410]");
    ASSERT_EQ(parts.bones.size(), whole.bones.size());
    for (size_t bone = 0; bone < parts.bones.size(); ++bone) {
        const bool isOwn = bone == 0 || bone == 6;
        const std::vector<size_t> kept = isOwn ? std::vector<size_t>{0, 1, 3, 4} : std::vector<size_t>{0, 2, 4};
        ASSERT_EQ(parts.bones[bone].rotations.size(), kept.size()) << bone;
        for (size_t k = 0; k < kept.size(); ++k) {
            EXPECT_EQ(parts.bones[bone].rotations[k].time, whole.bones[bone].rotations[kept[k]].time);
            const auto &a = parts.bones[bone].rotations[k].rotation, &b = whole.bones[bone].rotations[kept[k]].rotation;
            EXPECT_NEAR(std::abs(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]), 1, 1e-9);
        }
    }
    EXPECT_EQ(parts.bones[0].positions.size(), 4U);
    EXPECT_EQ(parts.bones[0].positions[2].position, whole.bones[0].positions[3].position);
}

// The first 850 and 899 triangles of the dense model have more than 500 points.
TEST_F(ForeignCharacter, TooManyPointsOfFewTrianglesAreSimplified) {
    for (const char* corners : {"2550", "2697"}) {
        Fixture fixture;
        fixture.Replace("'foreign.glb'", "'dense.glb'");
        std::string model = Fixture::Text(SOURCE / "dense.glb");
        model.replace(model.find("\"count\":4464") + 8, 4, corners);
        WriteWholeFile(fixture.folder / "dense.glb", {model.begin(), model.end()});
        const CompiledCharacter compiled = fixture.Compile();
        EXPECT_LE(compiled.points, CHARACTER_POINTS_MAX);
        EXPECT_GT(compiled.triangles, 700U);
    }
}

TEST_F(ForeignCharacter, FaultsAreNamedAndNothingIsWritten) {
    const struct {
        const char *what, *by;  // texts of the recipe: `what` is replaced by `by`
        const char* text;
    } rows[] = {
        {"scale = 80", "scale = ", "character.toml:2"},
        {"'Bip.002', ", "", "has 21 names"},
        {"'Bip.007'", "'Bop.007'", "has no joint 'Bop.007'"},
        {"'Bip.022', ", "", "joints without a bone: 'Bip.022'"},
        {"'Bip.000', 'Bip.001'", "'Bip.001', 'Bip.000'", "'Bip.000' outside the root"},
        {"take 1", "jump", "has no animation 'Armature|jump'"},
        {"zerorun.anm", "zerowalk.anm", "makes zerowalk.anm twice"},
        {"zerorun.anm", "zeerorun.anm", "is 'zeerorun.anm', which the game does not load"},
        {"zeroidle.anm'", "zeroidle.anm'\nlopp = true", "lopp"},
        {"[10, 110,", "[20, 110,", "do not rise from 10 to 410"},
        {"310, 410]", "310, 400]", "do not rise from 10 to 410"},
        {"length = 410", "length = 410\nblend = 120", "have one at 110, before 120"},
        {"310, 410]", "310, 410]\n[[clip.part]]\njoints = ['Bip.6']\nkeys = [10, 410]",
         "names 'Bip.6', which is no bone"},
        {"310, 410]", "310, 410]\n[[clip.part]]\njoints = ['Bip.006', 'Bip.006']\nkeys = [10, 410]",
         "names 'Bip.006' a second time"},
        {"310, 410]", "310, 410]\n[[clip.part]]\njoints = ['Bip.006']\nkeys = [10, 400]", "do not rise from 10 to 410"},
        {"'Material.001'", "'Material.002'", "uses the material 'Material.001'"},
        {"pictures = ['skin.png']", "", "0 pictures for 1"},
        {"'foreign.glb'", "'bare.glb'", "has no skin"},
        {"'foreign.glb'", "'none.glb'", "none.glb: cannot be read"},
        {"'foreign.glb'", "'skin.png'", "is no glTF binary"},
    };
    std::string bare = Fixture::Text(SOURCE / "foreign.glb");
    bare.replace(bare.find("\"skins\""), 7, "\"other\"");
    for (const auto& row : rows) {
        Fixture fixture;
        WriteWholeFile(fixture.folder / "bare.glb", {bare.begin(), bare.end()});
        fixture.Replace(row.what, row.by);
        ExpectRefusal(row.text, [&] {
            fixture.Write();
            CompileToFolder(fixture.folder / "character.toml", fixture.folder / "out");
        });
        EXPECT_FALSE(fs::exists(fixture.folder / "out"));
    }
}

}  // namespace
