// Another character walks in: walk_in.toml and walk_in.glb, a rigged character as free libraries of low-poly models
// have them, which knows nothing of the game. It has 41 joints with fingers and end joints below a root on the ground,
// named as is usual, is 5.9 units tall and looks along -z; it is made of tubes of 1,200 triangles, and has a few
// animations, of which the walk goes away.
#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "formats/files.h"
#include "formats/image.h"
#include "game_character.h"
#include "motion/report.h"

#include <algorithm>
#include <cmath>

namespace fs = std::filesystem;

namespace {

// The recipe, with what it needs beside it.
fs::path Recipe() {
    const fs::path home = testing::TempDir();
    for (const char* file : {"walk_in.toml", "walk_in.glb"})
        fs::copy_file(fs::path(SOURCE_FOLDER "/tests/tools/charc") / file, home / file,
                      fs::copy_options::overwrite_existing);
    WritePng(home / "skin.png", Image(64, 64));
    return home / "walk_in.toml";
}

class WalkIn : public GameCharacter {
protected:
    void SetUp() override {
        GameCharacter::SetUp();
        made_ = CompileCharacter(ReadRecipe(Recipe()));
        for (const OutputFile& file : made_.files)
            WriteWholeFile(home_ / file.path, file.content);
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

TEST(WalkInMoves, ThroughAllTheGamesStates) {
    const fs::path folder = fs::path(testing::TempDir()) / "game";
    CompileToFolder(Recipe(), folder);
    Stage stage(folder);
    EXPECT_GE(Explore(stage, 4).states.size(), 15U);
}
