#include "charc/compile.h"
#include "foreign_rig.h"
#include "formats/binary.h"
#include "formats/error.h"
#include "formats/image.h"
#include "game_pose.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <functional>

namespace {

std::filesystem::path Folder() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return std::filesystem::path(testing::TempDir()) / "charc" / test->name();
}

// A character of its own in the test's folder, to be changed before it is compiled.
struct Fixture {
    std::filesystem::path folder = Folder();
    ForeignRig rig;
    std::string recipe = rig.Recipe("model.glb");

    CharacterRecipe Write() {
        rig.Write(folder / "model.glb");
        WritePng(folder / "skin.png", Image(64, 32));
        WriteText(folder / "character.toml", recipe);
        return ReadRecipe(folder / "character.toml");
    }
    CompiledCharacter Compile() { return CompileCharacter(Write()); }
    void Replace(const std::string& what, const std::string& by) {
        const size_t at = recipe.find(what);
        ASSERT_NE(at, std::string::npos) << what;
        recipe.replace(at, what.size(), by);
    }
    std::string Refusal() {
        try {
            Write();
            CompileToFolder(folder / "character.toml", folder / "out");
        } catch (const ContentError& error) {
            EXPECT_FALSE(std::filesystem::exists(folder / "out"));
            return error.what();
        }
        return "no error";
    }
};

// From the model's world to the frame of the actor's position.
Vec ToActor(const Vec& metres) {
    return {80 * metres[0], 80 * metres[1] - 100, -80 * metres[2]};
}

double Distance(const Vec& a, const Vec& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

}  // namespace

TEST(ForeignCharacter, IsSkinnedByTheGameAsByItsOwnFormat) {
    Fixture fixture;
    const CompiledCharacter compiled = fixture.Compile();
    const GameCharacter game = DecodeAll(compiled.files);
    ASSERT_EQ(game.mesh.triangles.size(), fixture.rig.triangles.size());
    for (size_t c = 0; c < 2; ++c) {
        const ForeignRig::Clip& clip = fixture.rig.clips[c];
        for (size_t key = 0; key < clip.times.size(); ++key) {
            const auto points = PointsAt(game, CHARACTER_CLIP_FILES[c], 10 + 100.0 * static_cast<double>(key));
            double worst = 0;
            for (size_t t = 0; t < fixture.rig.triangles.size(); ++t) {
                for (size_t k = 0; k < 3; ++k) {
                    const auto& vertex = fixture.rig.vertices[fixture.rig.triangles[t][k]];
                    const Vec wanted = ToActor(fixture.rig.SkinnedVertex(vertex, clip, key));
                    worst = std::max(worst, Distance(wanted, points[game.mesh.triangles[t][k]]));
                }
            }
            EXPECT_LT(worst, 0.02) << clip.name << ", key " << key;
        }
    }
    EXPECT_TRUE(std::none_of(compiled.notes.begin(), compiled.notes.end(),
                             [](const std::string& note) { return note.find("by itself") != std::string::npos; }));
}

TEST(ForeignCharacter, IsSeenFromOutside) {
    Fixture fixture;
    const GameCharacter game = DecodeAll(fixture.Compile().files);
    // Each blob is closed: with corners counter-clockwise as seen from outside its normals, as the game computes them
    // in its left-handed space, point inward, and so does the volume they enclose.
    double volume = 0;
    for (const auto& triangle : game.mesh.triangles) {
        const auto corner = [&](size_t k) {
            const auto& p = game.mesh.points[triangle[k]];
            return Vector{static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])};
        };
        volume += Dot(corner(0), Cross(corner(1), corner(2)));
    }
    double source = 0;
    for (const auto& triangle : fixture.rig.triangles) {
        const auto corner = [&](size_t k) {
            const Vec& p = fixture.rig.vertices[triangle[k]].position;
            return Vector{p[0], p[1], p[2]};
        };
        source += Dot(corner(0), Cross(corner(1), corner(2)));
    }
    EXPECT_GT(source, 0) << "glTF winds the other way";
    EXPECT_LT(volume, 0);
}

TEST(ForeignCharacter, WeightsAndPicturesArriveAsTheyWere) {
    Fixture fixture;
    const GameCharacter game = DecodeAll(fixture.Compile().files);
    const auto shares = Shares(game);
    const auto& skin = game.skins.at("tarnwick.tuv");
    for (size_t t = 0; t < fixture.rig.triangles.size(); ++t) {
        for (size_t k = 0; k < 3; ++k) {
            const auto& vertex = fixture.rig.vertices[fixture.rig.triangles[t][k]];
            std::array<double, CHARACTER_BONES> wanted{};
            for (size_t i = 0; i < 4; ++i) {
                const int joint = vertex.joints[i];
                const int bone = joint < 22 ? joint : fixture.rig.parents[static_cast<size_t>(joint)];
                wanted[static_cast<size_t>(bone)] += vertex.weights[i];
            }
            for (size_t b = 0; b < CHARACTER_BONES; ++b)
                ASSERT_NEAR(shares[game.mesh.triangles[t][k]][b], wanted[b], 3e-5) << "bone " << b;
            const auto& uv = skin[t].corners[k];
            EXPECT_NEAR(uv[0], std::clamp(vertex.uv[0] * 64 * 256, 128.0, 64 * 256 - 128.0), 0.01);
            EXPECT_NEAR(uv[1], std::clamp(vertex.uv[1] * 32 * 256, 128.0, 32 * 256 - 128.0), 0.01);
        }
    }
}

TEST(ForeignCharacter, EveryPointIsPlacedHardBeforeItIsBlended) {
    Fixture fixture;
    const GameCharacter game = DecodeAll(fixture.Compile().files);
    std::vector<int> placed(game.mesh.points.size(), 0);
    for (const WeightBlock& block : game.blocks) {
        for (const uint16_t point : block.hard)
            EXPECT_EQ(placed[point]++, 0);
        for (const SoftPoint& soft : block.soft)
            EXPECT_EQ(placed[soft.point], 1);
    }
    EXPECT_EQ(std::count(placed.begin(), placed.end(), 1), static_cast<long>(placed.size()));
}

TEST(ForeignCharacter, KeepsTheThreeStrongestBonesOfAPoint) {
    Fixture fixture;
    for (auto& vertex : fixture.rig.vertices) {
        vertex.joints = {3, 9, 1, 20};
        vertex.weights = {0.1, 0.3, 0.4, 0.2};
    }
    const CompiledCharacter compiled = fixture.Compile();
    for (const auto& share : Shares(DecodeAll(compiled.files))) {
        EXPECT_EQ(share[3], 0);
        EXPECT_NEAR(share[9], 3.0 / 9, 3e-5);
        EXPECT_NEAR(share[1], 4.0 / 9, 3e-5);
        EXPECT_NEAR(share[20], 2.0 / 9, 3e-5);
    }
    EXPECT_NE(compiled.notes[0].find("10 % of its weight"), std::string::npos) << compiled.notes[0];
}

TEST(ForeignCharacter, QuaternionsStayOnOneSideAndKeysStandAsListed) {
    Fixture fixture;
    for (const auto& [file, animation] : DecodeAll(fixture.Compile().files).clips) {
        EXPECT_EQ(animation.length, 410U);
        EXPECT_EQ(animation.hiddenBlock, 255U);
        for (const BoneTracks& bone : animation.bones) {
            EXPECT_GE(bone.rotations[0].rotation[0], 0);
            for (size_t k = 1; k < bone.rotations.size(); ++k) {
                const auto& a = bone.rotations[k - 1].rotation;
                const auto& b = bone.rotations[k].rotation;
                EXPECT_GE(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3], 0) << file;
                EXPECT_EQ(bone.rotations[k].time, 10 + 100 * k);
            }
        }
        EXPECT_EQ(animation.bones[0].pivot, (std::array<double, 3>{0, 0, 0}));
        EXPECT_EQ(animation.bones[0].positions.size(), 5U);
    }
}

TEST(ForeignCharacter, StretchedLimbsAreReportedWithClipJointAndDistance) {
    Fixture fixture;
    fixture.rig.Write(fixture.folder / "model.glb");
    tinygltf::Model gltf = fixture.rig.ToGltf();
    tinygltf::Animation& animation = gltf.animations[1];
    tinygltf::AnimationChannel stretch = animation.channels.back();  // the root's path, given to another joint
    stretch.target_node = 16;
    animation.channels.push_back(stretch);
    const CharacterRecipe recipe = fixture.Write();
    WriteGltf(gltf, recipe.model);
    const CompiledCharacter compiled = CompileCharacter(recipe);
    const auto tells = [](const std::string& note) {
        return note.find("take 1' moves or scales 'Bip.0") != std::string::npos;
    };
    EXPECT_EQ(std::count_if(compiled.notes.begin(), compiled.notes.end(), tells), 9) << "a note for each use of it";
}

TEST(ForeignCharacter, TooManyTrianglesAreSimplifiedWithTheirWeights) {
    Fixture fixture;
    fixture.rig.AddBlob(4, 45);
    const CompiledCharacter compiled = fixture.Compile();
    EXPECT_LE(compiled.triangles, CHARACTER_MAX_TRIANGLES);
    EXPECT_GT(compiled.triangles, CHARACTER_MAX_TRIANGLES / 2);
    EXPECT_LE(compiled.points, CHARACTER_MAX_POINTS);
    EXPECT_EQ(compiled.notes[0].substr(0, 15), "simplified from");
    const GameCharacter game = DecodeAll(compiled.files);
    // What is left are vertices of the model, moved by the same bones.
    std::vector<Vec> source;
    for (const auto& vertex : fixture.rig.vertices)
        source.push_back(ToActor(fixture.rig.SkinnedVertex(vertex, fixture.rig.clips[0], 2)));
    for (const Vec& point : PointsAt(game, CHARACTER_CLIP_FILES[0], 210)) {
        const bool known = std::any_of(source.begin(), source.end(),
                                       [&](const Vec& vertex) { return Distance(point, vertex) < 0.02; });
        ASSERT_TRUE(known);
    }
}

TEST(ForeignCharacter, EveryRunGivesTheSameBytes) {
    Fixture fixture;
    const CompiledCharacter first = fixture.Compile(), second = fixture.Compile();
    for (size_t i = 0; i < first.files.size(); ++i)
        EXPECT_EQ(first.files[i].content, second.files[i].content) << first.files[i].name;
}

TEST(ForeignCharacter, FaultsAreNamedAndNothingIsWritten) {
    const struct {
        const char* fault;
        std::function<void(Fixture&)> make;
        const char* text;
    } rows[] = {
        {"no recipe", [](Fixture& f) { f.recipe = "model = "; }, "character.toml:1"},
        {"too few bones", [](Fixture& f) { f.Replace("'Bip.002', ", ""); }, "has 21 names"},
        {"misspelt joint", [](Fixture& f) { f.Replace("'Bip.007'", "'Bop.007'"); }, "has no joint 'Bop.007'"},
        {"joint too many", [](Fixture& f) { f.Replace("'Bip.022', ", ""); }, "joints without a bone: 'Bip.022'"},
        {"root below another", [](Fixture& f) { f.Replace("'Bip.000', 'Bip.001'", "'Bip.001', 'Bip.000'"); },
         "'Bip.000' outside the root"},
        {"missing clip", [](Fixture& f) { f.Replace("take 1", "jump"); }, "has no animation 'Armature|jump'"},
        {"missing file", [](Fixture& f) { f.Replace("zerorun.anm", "zerowalk.anm"); }, "makes zerowalk.anm twice"},
        {"misspelt file", [](Fixture& f) { f.Replace("zerorun.anm", "zeerorun.anm"); }, "lacks zerorun.anm"},
        {"late first key", [](Fixture& f) { f.Replace("[10, 110,", "[20, 110,"); }, "do not rise from 10 to 410"},
        {"early last key", [](Fixture& f) { f.Replace("310, 410]", "310, 400]"); }, "do not rise from 10 to 410"},
        {"key within a blend", [](Fixture& f) { f.Replace("length = 410", "length = 410\nblend = 120"); },
         "have one at 110, before 120"},
        {"unknown material", [](Fixture& f) { f.Replace("'Material.001'", "'Material.002'"); },
         "uses the material 'Material.001'"},
        {"skin without picture", [](Fixture& f) { f.Replace("pictures = ['skin.png']", ""); }, "0 pictures for 1"},
        {"no skeleton", [](Fixture& f) { f.Replace("'model.glb'", "'bare.glb'"); }, "has no skin"},
        {"no model", [](Fixture& f) { f.Replace("'model.glb'", "'none.glb'"); }, "none.glb: cannot be read"},
        {"not glTF", [](Fixture& f) { f.Replace("'model.glb'", "'skin.png'"); }, "is no glTF binary"},
    };
    for (const auto& row : rows) {
        Fixture fixture;
        fixture.folder /= row.fault;
        row.make(fixture);
        tinygltf::Model bare = fixture.rig.ToGltf();
        bare.skins.clear();
        WriteGltf(bare, fixture.folder / "bare.glb");
        const std::string message = fixture.Refusal();
        EXPECT_NE(message.find(row.text), std::string::npos) << row.fault << ": " << message;
    }
}

TEST(ForeignCharacter, DamagedModelsAreRefusedOrConverted) {
    Fixture fixture;
    const CharacterRecipe recipe = fixture.Write();
    const std::vector<uint8_t> whole = ReadWholeFile(recipe.model);
    uint32_t textBytes;
    std::memcpy(&textBytes, whole.data() + 12, 4);
    Random random;
    int refused = 0;
    for (int i = 0; i < 150; ++i) {
        std::vector<uint8_t> bytes = whole;
        if (i % 3 == 0) {
            bytes.resize(static_cast<size_t>(random.Next(0, static_cast<double>(whole.size()))));
        } else {
            const double end = i % 3 == 1 ? 20 + textBytes : static_cast<double>(whole.size());
            for (int k = 0; k < 3; ++k)
                bytes[static_cast<size_t>(random.Next(12, end))] = static_cast<uint8_t>('0' + random.Next(0, 10));
        }
        WriteWholeFile(recipe.model, bytes);
        try {
            CompileCharacter(recipe);
        } catch (const ContentError&) {
            ++refused;
        }
    }
    EXPECT_GE(refused, 50) << "the cut ones at least";
}
