// The character that comes with the game.
#include "charc/compile.h"
#include "charc/recipe_reader.h"
#include "formats/files.h"
#include "game_character.h"
#include "motion/least_measures.h"
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

bool IsCrouch(int32_t state) {
    return state == STATE_LEAP_CROUCH || state == STATE_HOP_CROUCH;
}

double MostStep(const StatePair& pair, double leastIntoCrouch) {
    const bool moves = pair.first == STATE_RUN_UP || pair.first == STATE_RUN || pair.first == STATE_WALK;
    if (moves && IsCrouch(pair.second)) return leastIntoCrouch + 1;
    return InTheAir(pair.first) || InTheAir(pair.second) ? 30 : 20;
}

double MostMean(const StatePair& pair) {
    return InTheAir(pair.first) || InTheAir(pair.second) ? 15 : 6;
}

// Blends move feet that are down. A crouch begins with both feet just off the ground. The way from the walk into the
// run is the worst: the feet go back to where they were at each of its keys.
double MostSlide(const StatePair& pair) {
    if (IsCrouch(pair.second)) return 5;
    return pair == StatePair{STATE_WALK, STATE_RUN} ? 24 : 14;
}

}  // namespace

TEST(ZeroMoves, EvenlyInEveryStateAndFromEachToTheNext) {
    Stage stage(Files());
    const Movement movement = Explore(stage, 1, Changes::BETWEEN_BLENDS);
    EXPECT_EQ(movement.states.size(), 17U) << "all that are ever played but the take-offs, which last one frame";
    EXPECT_GT(movement.transitions.size(), 45U);
    for (const auto& [state, measures] : movement.states) {
        EXPECT_LT(measures.largest, InTheAir(state) ? 28 : 10) << NameOf(state);
        EXPECT_LT(measures.mean, InTheAir(state) ? 10 : 3.2) << NameOf(state);
        EXPECT_LT(measures.depth, 1.5) << NameOf(state);
        EXPECT_LT(measures.slide, IsCrouch(state) ? 5 : 1) << NameOf(state);  // the character still rolls on
    }
    const double intoCrouch = LeastStepFrom(stage, {STATE_READY, STATE_RUN_UP, STATE_RUN, STATE_WALK});
    EXPECT_GT(intoCrouch, 36) << "less than a foot's way in a stride needs";
    EXPECT_LT(intoCrouch, 40);
    EXPECT_GT(movement.transitions.at({STATE_RUN, STATE_LEAP_CROUCH}).worst.largest, LeastStepFrom(stage, {STATE_RUN}))
        << "not all moments of the run were left";
    const double intoBlend = LeastSlideFrom(stage, STATE_RUN, 13);
    EXPECT_GT(intoBlend, 1.5) << "a stride that short would not carry the run";
    EXPECT_LT(intoBlend, 4);
    for (const auto& [pair, transition] : movement.transitions) {
        EXPECT_LT(transition.worst.largest, MostStep(pair, intoCrouch)) << Named(pair);
        EXPECT_LT(transition.worst.depth, 1.5) << Named(pair);
        EXPECT_LT(transition.worst.slide, MostSlide(pair)) << Named(pair);
        EXPECT_LT(transition.worst.mean, MostMean(pair)) << Named(pair);
    }
    for (const PlayerState slower : {STATE_HALT, STATE_WALK}) {
        const Transition& found = movement.transitions.at({STATE_RUN, slower});
        const BlendMeasures least = LeastInBlend(stage, STATE_RUN, slower, found);
        EXPECT_GE(least.slide, least.firstSlide) << NameOf(slower);
        EXPECT_NEAR(least.slide, found.worst.slide, 1) << NameOf(slower) << ": zero's keys are about the best";
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
        for (const auto& [pair, transition] : Explore(stage, ticks, Changes::BETWEEN_BLENDS).transitions)
            EXPECT_LT(transition.worst.largest, ticks == 2 ? 58 : 82) << Named(pair) << ", " << ticks << " ticks";
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
