// The character that comes with the game.
#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "formats/files.h"
#include "game_character.h"
#include "motion/report.h"

#include "world/world_tables.h"

#include <fmt/format.h>

namespace {

const CompiledCharacter& Compiled() {
    static const CompiledCharacter character =
        CompileCharacter(ReadRecipe(std::filesystem::path(SOURCE_FOLDER) / "content/character/zero.toml"));
    return character;
}

std::filesystem::path Files() {
    std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "zero";
    for (const OutputFile& file : Compiled().files)
        WriteWholeFile(folder / file.path, file.content);
    return folder;
}

class Zero : public GameCharacter {
protected:
    void SetUp() override {
        GameCharacter::SetUp();
        Load(Files());
    }
};

}  // namespace

TEST_F(Zero, IsWithinTheLimitsAndNeedsNoRemark) {
    EXPECT_LE(Compiled().triangles, CHARACTER_TRIANGLES_MAX);
    EXPECT_LE(Compiled().points, CHARACTER_POINTS_MAX);
    for (const std::string& note : Compiled().notes)
        ADD_FAILURE() << note;
}

TEST_F(Zero, StandsOnTheGroundAndLooksAhead) {
    const std::vector<Vec3> points = PointsAt("zeroidle.anm", 10);
    float low = 1e9, high = -1e9, toes = 0;
    for (const Vec3& point : points) {
        low = std::min(low, point.y);
        high = std::max(high, point.y);
        if (point.y < GROUND + 6) toes = std::min(toes, point.z);
    }
    EXPECT_NEAR(low, GROUND, 1);
    EXPECT_NEAR(high - low, 182, 4);
    EXPECT_LT(toes, -12) << "the mesh faces -z";
}

namespace {

bool InTheAir(int32_t state) {
    return state >= STATE_LEAP_CROUCH && state <= STATE_HOP_LAND;
}

std::string Named(const StatePair& pair) {
    return fmt::format("{} -> {}", NameOf(pair.first), NameOf(pair.second));
}

// What one pose for all cannot reach: no crouch is nearer than 44 units to every moment of the run or the walk, and a
// blend that ends in a run ends with a quarter of the way.
double MostStep(const StatePair& pair) {
    const bool moves = pair.first == STATE_RUN_UP || pair.first == STATE_RUN || pair.first == STATE_WALK;
    if (moves && (pair.second == STATE_LEAP_CROUCH || pair.second == STATE_HOP_CROUCH)) return 50;
    if (InTheAir(pair.first) || InTheAir(pair.second)) return 30;
    return pair.second == STATE_RUN || pair.second == STATE_RUN_UP ? 27 : 20;
}

}  // namespace

TEST(ZeroMoves, EvenlyInEveryStateAndFromEachToTheNext) {
    Stage stage(Files());
    const Movement movement = Explore(stage, 1);
    EXPECT_EQ(movement.states.size(), 17U) << "all that are ever played but the take-offs, which last one frame";
    EXPECT_GT(movement.transitions.size(), 45U);
    for (const auto& [state, measures] : movement.states) {
        EXPECT_LT(measures.largest, InTheAir(state) ? 30 : 13) << NameOf(state);
        EXPECT_LT(measures.mean, InTheAir(state) ? 11 : 4) << NameOf(state);
        EXPECT_LT(measures.depth, 1.5) << NameOf(state);
        EXPECT_LT(measures.slide, state == STATE_LEAP_CROUCH ? 5 : 1) << NameOf(state);  // it still rolls on
    }
    for (const auto& [pair, transition] : movement.transitions) {
        EXPECT_LT(transition.worst.largest, MostStep(pair)) << Named(pair);
        EXPECT_LT(transition.worst.depth, 8) << Named(pair);
        EXPECT_LT(transition.worst.mean, MostStep(pair) <= 20 ? 6.6 : 16) << Named(pair);
    }
    for (const PlayerState state : {STATE_RUN, STATE_WALK, STATE_BACK}) {
        const LoopMeasures loop = MeasureLoop(stage, state);
        EXPECT_LT(loop.closing, 0.1) << NameOf(state);
        EXPECT_LT(loop.symmetry, 1) << NameOf(state);
    }
}

// Levels with longer frames show fewer of the same moments.
TEST(ZeroMoves, NoWorseThanItsSpeedInLongerFrames) {
    for (const uint32_t ticks : {2U, 4U}) {
        Stage stage(Files());
        for (const auto& [pair, transition] : Explore(stage, ticks).transitions)
            EXPECT_LT(transition.worst.largest, ticks == 2 ? 70 : 84) << Named(pair) << ", " << ticks << " ticks";
    }
}

// Corners run counter-clockwise as seen from outside, so that in the game's left-handed space the volume they enclose
// is negative.
TEST_F(Zero, IsSeenFromOutside) {
    double volume = 0;
    for (int i = 0; i < 3 * mesh_.faceCount; i += 3) {
        const auto corner = [&](int k) {
            const uint32_t first = WorldGeometry.polygons[mesh_.firstPolygon].firstVertex;
            return WorldGeometry.points[WorldGeometry.polyVertices[first + static_cast<uint32_t>(i + k)].point]
                .position;
        };
        const Vec3 a = corner(0), b = corner(1), c = corner(2);
        volume += a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) + a.z * (b.x * c.y - b.y * c.x);
    }
    EXPECT_LT(volume, -1e5);
}
