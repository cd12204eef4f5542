// Another character walks in: walk_in.toml and walk_in.glb, a rigged character as free libraries of low-poly models
// have them, which knows nothing of the game. It has 41 joints with fingers and end joints below a root on the ground,
// named as is usual, is 5.9 units tall and looks along -z; it is made of tubes of 1,200 triangles, and has a few
// animations, of which the walk goes away.
#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "formats/binary.h"
#include "formats/files.h"
#include "game_character.h"
#include "motion/report.h"
#include "walk_in.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace fs = std::filesystem;

namespace {

// A binary glTF file: 12 bytes, then the JSON with its length and its name before it, then the numbers.
nlohmann::json JsonOf(const std::vector<uint8_t>& file, size_t& end) {
    uint32_t length = 0;
    std::memcpy(&length, &file[12], sizeof length);
    end = 20 + length;
    return nlohmann::json::parse(file.begin() + 20, file.begin() + static_cast<std::ptrdiff_t>(end));
}

// The head, triangles 240 to 299, becomes a mesh of its own without weights, which hangs on the joint above it.
void PutHeadOnRigidly(const fs::path& model) {
    std::vector<uint8_t> file = ReadWholeFile(model);
    size_t end = 0;
    nlohmann::json json = JsonOf(file, end);
    const nlohmann::json body = json["meshes"][0]["primitives"][0];
    const auto part = [&](uint32_t from, uint32_t to) {
        nlohmann::json indices = json["accessors"][4];
        indices["byteOffset"] = from * 4;
        indices["count"] = to - from;
        json["accessors"].push_back(indices);
        nlohmann::json primitive = body;
        primitive["indices"] = json["accessors"].size() - 1;
        return primitive;
    };
    json["meshes"][0]["primitives"] = {part(0, 720), part(900, 6300)};
    nlohmann::json head = part(720, 900);
    head["attributes"].erase("JOINTS_0");
    head["attributes"].erase("WEIGHTS_0");
    json["meshes"].push_back({{"primitives", {head}}});
    // HeadTop_End is 5.9 up.
    json["nodes"][6]["children"] = {json["nodes"].size()};
    json["nodes"].push_back({{"name", "Hat"}, {"mesh", 1}, {"translation", {0, -5.9, 0}}});
    std::string text = json.dump();
    text.resize((text.size() + 3) / 4 * 4, ' ');
    ByteWriter changed;
    changed.Append(file.data(), 8);
    changed.U32(static_cast<uint32_t>(20 + text.size() + file.size() - end));
    changed.U32(static_cast<uint32_t>(text.size()));
    changed.Append(&file[16], 4);
    changed.Append(text.data(), text.size());
    changed.Append(&file[end], file.size() - end);
    WriteWholeFile(model, changed.bytes);
}

class WalkIn : public GameCharacter {
protected:
    void SetUp() override {
        GameCharacter::SetUp();
        made_ = CompileCharacter(ReadRecipe(WalkInRecipe()));
        for (const OutputFile& file : made_.files)
            WriteWholeFile(home_ / file.path, file.content);
    }

    // Where the points are at some moments of some clips.
    std::vector<std::vector<Vec3>> Poses(const fs::path& folder) {
        Load(folder);
        std::vector<std::vector<Vec3>> poses;
        for (const char* clip : {"zeroidle.anm", "zerowalk.anm", "zerorun.anm"}) {
            for (const uint32_t time : {10U, 50U, 90U})
                poses.push_back(PointsAt(clip, time));
        }
        return poses;
    }

    size_t Notes(const std::string& text) const {
        return static_cast<size_t>(std::count_if(made_.notes.begin(), made_.notes.end(), [&](const std::string& note) {
            return note.find(text) != std::string::npos;
        }));
    }

    fs::path home_ = fs::path(testing::TempDir());
    CompiledCharacter made_;
};

float Middle(const std::vector<Vec3>& points, float Vec3::*axis) {
    float sum = 0;
    for (const Vec3& point : points)
        sum += point.*axis;
    return sum / static_cast<float>(points.size());
}

}  // namespace

TEST_F(WalkIn, StandsOnTheGroundAtTheHeightAskedForAndLooksAhead) {
    Load(home_);
    const std::vector<Vec3> points = PointsAt("zeroidle.anm", 10);
    const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                 [](const Vec3& a, const Vec3& b) { return float{a.y} < float{b.y}; });
    EXPECT_NEAR(low->y, GROUND, 0.5);
    EXPECT_NEAR(high->y, GROUND + 182, 0.5);
    float ahead = 0, behind = 0;
    for (const Vec3& point : points) {
        if (point.y > GROUND + 8) continue;
        ahead = std::min(ahead, float{point.z});
        behind = std::max(behind, float{point.z});
    }
    EXPECT_LT(ahead, -2 * behind) << "the toes";
}

TEST_F(WalkIn, IsBroughtWithinTheLimitsAndToldWhatWasDone) {
    EXPECT_LE(made_.triangles, CHARACTER_TRIANGLES_MAX);
    EXPECT_GT(made_.triangles, CHARACTER_TRIANGLES_MAX / 2);
    EXPECT_LE(made_.points, CHARACTER_POINTS_MAX);
    EXPECT_EQ(Notes("simplified from"), 1U);
    EXPECT_EQ(Notes("joints follow the next bone above: 'Root', 'HeadTop_End', 'LeftHandFinger01'"), 1U);
    EXPECT_EQ(Notes("no clip is named for"), CHARACTER_CLIPS.size() - 4);
    EXPECT_EQ(Notes("no clip is named for zeroback.anm: 'Walking' stands in backwards"), 1U);
    EXPECT_EQ(Notes("no clip is named for zerofold.anm: 'Idle' stands in with its first pose"), 1U);
    EXPECT_EQ(Notes("no clip is named for zeroreru.anm: 'Running' stands in"), 1U);
    EXPECT_GE(Notes("'Walking' walks 93 units off by itself: taken back"), 1U);
}

TEST_F(WalkIn, StaysInPlaceAndBacksOffAsItWalks) {
    Load(home_);
    const std::vector<Vec3> first = PointsAt("zerowalk.anm", 10);
    const float start = Middle(first, &Vec3::z);
    for (const uint32_t time : {70U, 130U, 190U, 250U}) {
        EXPECT_NEAR(Middle(PointsAt("zerowalk.anm", time), &Vec3::z), start, 6) << time;
        const std::vector<Vec3> forward = PointsAt("zerowalk.anm", time);
        const std::vector<Vec3> backward = PointsAt("zeroback.anm", 260 - time);
        for (size_t i = 0; i < forward.size(); ++i)
            ASSERT_LT(std::hypot(forward[i].y - backward[i].y, forward[i].z - backward[i].z), 0.5f) << time;
    }
}

// The game moves no bone but the first, and only that one's joint shows how the hips sway.
TEST_F(WalkIn, ARootThatMovesNothingGivesItsPlaceToTheHips) {
    std::string text;
    for (const uint8_t byte : ReadWholeFile(WalkInRecipe()))
        text += static_cast<char>(byte);
    text.replace(text.find("'Hips'"), 6, "'Root'").replace(text.find("''"), 2, "'Hips'");
    WriteWholeFile(home_ / "rooted.toml", {text.begin(), text.end()});
    CompileToFolder(home_ / "rooted.toml", home_ / "rooted");
    const auto expected = Poses(home_);
    const auto poses = Poses(home_ / "rooted");
    for (size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(poses[i].size(), expected[i].size());
        for (size_t k = 0; k < poses[i].size(); ++k)
            ASSERT_LT(std::hypot(poses[i][k].x - expected[i][k].x, poses[i][k].y - expected[i][k].y,
                                 poses[i][k].z - expected[i][k].z),
                      0.05f)
                << i;
    }
}

TEST_F(WalkIn, RigidPartsFollowTheJointThatTheyHangOn) {
    const auto expected = Poses(home_);
    const fs::path recipe = WalkInRecipe();
    PutHeadOnRigidly(home_ / "walk_in.glb");
    CompileToFolder(recipe, home_ / "rigid");
    const auto poses = Poses(home_ / "rigid");
    // The meshes are simplified otherwise. Were the head left out or elsewhere, all would be of another size.
    for (size_t i = 0; i < expected.size(); ++i) {
        for (const auto axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
            const auto less = [&](const Vec3& a, const Vec3& b) { return float{a.*axis} < float{b.*axis}; };
            const auto [low, high] = std::minmax_element(expected[i].begin(), expected[i].end(), less);
            const auto [lowest, highest] = std::minmax_element(poses[i].begin(), poses[i].end(), less);
            EXPECT_NEAR((*low).*axis, (*lowest).*axis, 8) << i;
            EXPECT_NEAR((*high).*axis, (*highest).*axis, 8) << i;
        }
    }
}

TEST(WalkInMoves, ThroughAllTheGamesStates) {
    const fs::path folder = fs::path(testing::TempDir()) / "game";
    CompileToFolder(WalkInRecipe(), folder);
    Stage stage(folder);
    EXPECT_GE(Explore(stage, 4).states.size(), 15U);
}
