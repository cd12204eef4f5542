// The character that comes with the game.
#include "charc/compile.h"
#include "formats/error.h"
#include "game_pose.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const CompiledCharacter& Compiled() {
    static const CompiledCharacter character =
        CompileCharacter(ReadRecipe(std::filesystem::path(SOURCE_FOLDER) / "content/character/zero.toml"));
    return character;
}

const GameCharacter& Zero() {
    static const GameCharacter character = DecodeAll(Compiled().files);
    return character;
}

// Points of the soles: the lowest of the mesh in the pose it is drawn in.
std::vector<size_t> Soles() {
    std::vector<size_t> soles;
    float lowest = 0;
    for (const auto& point : Zero().mesh.points)
        lowest = std::min(lowest, point[1]);
    for (size_t i = 0; i < Zero().mesh.points.size(); ++i) {
        if (Zero().mesh.points[i][1] < lowest + 1) soles.push_back(i);
    }
    return soles;
}

constexpr double GROUND = -110;  // below the actor's position

}  // namespace

TEST(Zero, IsWithinTheLimitsAndNeedsNoRemark) {
    EXPECT_LE(Compiled().triangles, CHARACTER_MAX_TRIANGLES);
    EXPECT_LE(Compiled().points, CHARACTER_MAX_POINTS);
    for (const std::string& note : Compiled().notes)
        ADD_FAILURE() << note;
}

TEST(Zero, StandsOnTheGroundAndLooksAhead) {
    const std::vector<Vec> points = PointsAt(Zero(), "zeroidle.anm", 10);
    double low = 1e9, high = -1e9, toes = 0;
    for (const Vec& point : points) {
        low = std::min(low, point[1]);
        high = std::max(high, point[1]);
        if (point[1] < GROUND + 6) toes = std::min(toes, point[2]);
    }
    EXPECT_NEAR(low, GROUND, 1);
    EXPECT_NEAR(high - low, 182, 4);
    EXPECT_LT(toes, -12) << "the mesh faces -z";
}

// While a sole point is on the ground, it must go back as fast as the character goes forward.
TEST(Zero, FeetDoNotSlideNorSink) {
    const struct {
        const char* file;
        double speed;  // units a second, forward
        double slide;  // allowed, of the way on the ground
    } rows[] = {{"zerorun.anm", 537.5, 0.1}, {"zerowalk.anm", 187.5, 0.1}, {"zeroback.anm", -162.5, 0.1}};
    for (const auto& row : rows) {
        const uint32_t length = Zero().clips.at(row.file).length;
        constexpr double STEP = 2;
        double deepest = 0, contact = 0, slid = 0;
        std::vector<Vec> before = PointsAt(Zero(), row.file, 10);
        for (double time = 10 + STEP; time <= length; time += STEP) {
            const std::vector<Vec> now = PointsAt(Zero(), row.file, time);
            double nearest = 1e9, away = 0;
            for (const size_t i : Soles()) {
                deepest = std::min(deepest, now[i][1] - GROUND);
                if (now[i][1] > nearest) continue;
                nearest = now[i][1];
                away = now[i][2] - before[i][2] - row.speed * STEP / CHARACTER_TIME_PER_SECOND;  // -z is ahead
            }
            if (nearest < GROUND + 2) {
                contact += std::abs(row.speed) * STEP / CHARACTER_TIME_PER_SECOND;
                slid += std::abs(away);
            }
            before = now;
        }
        EXPECT_GT(deepest, -3) << row.file;
        EXPECT_GT(contact, 60) << row.file;
        EXPECT_LT(slid / contact, row.slide) << row.file;
    }
}

TEST(Zero, ClipsThatFollowEachOtherMeet) {
    const struct {
        const char* from;
        double end;
        const char* to;
        double start;
        double most;  // units
    } rows[] = {
        {"zerofold.anm", 400, "zerofol2.anm", 10, 1},  {"zerofol2.anm", 2020, "zerofol3.anm", 10, 1},
        {"zerofol3.anm", 400, "zeroidle.anm", 10, 1},  {"zeroredy.anm", 75, "zeroreru.anm", 10, 1},
        {"zeroreru.anm", 110, "zerorun.anm", 10, 1},   {"zerorun.anm", 190, "zerorun.anm", 10, 1},
        {"zerowalk.anm", 280, "zerowalk.anm", 10, 1},  {"zeroback.anm", 260, "zeroback.anm", 10, 1},
        {"zerojum1.anm", 60, "zerojum2.anm", 15, 35},  {"zerojum2.anm", 60, "zerojum3.anm", 10, 1},
        {"zerojum3.anm", 100, "zerojum4.anm", 100, 1}, {"zerojum4.anm", 170, "zeroredy.anm", 10, 1},
        {"zeroretl.anm", 260, "zeroidle.anm", 10, 1},  {"zeroretr.anm", 260, "zeroidle.anm", 10, 1},
    };
    for (const auto& row : rows) {
        const auto a = PointsAt(Zero(), row.from, row.end), b = PointsAt(Zero(), row.to, row.start);
        double worst = 0;
        for (size_t i = 0; i < a.size(); ++i)
            worst = std::max(worst, std::hypot(a[i][0] - b[i][0], a[i][1] - b[i][1], a[i][2] - b[i][2]));
        EXPECT_LT(worst, row.most) << row.from << " to " << row.to;
    }
}

// Corners run counter-clockwise as seen from outside, so that in the game's left-handed space the volume they enclose
// is negative.
TEST(Zero, IsSeenFromOutside) {
    double volume = 0;
    for (const auto& triangle : Zero().mesh.triangles) {
        const auto& a = Zero().mesh.points[triangle[0]];
        const auto& b = Zero().mesh.points[triangle[1]];
        const auto& c = Zero().mesh.points[triangle[2]];
        volume += a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
                  a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    EXPECT_LT(volume, -1e5);
}
