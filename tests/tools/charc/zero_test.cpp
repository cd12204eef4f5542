// The character that comes with the game.
#include "charc/compile.h"
#include "formats/files.h"
#include "game_character.h"

#include "world/world_tables.h"

#include <cmath>

namespace {

const CompiledCharacter& Compiled() {
    static const CompiledCharacter character =
        CompileCharacter(ReadRecipe(std::filesystem::path(SOURCE_FOLDER) / "content/character/zero.toml"));
    return character;
}

class Zero : public GameCharacter {
protected:
    void SetUp() override {
        GameCharacter::SetUp();
        const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "zero";
        for (const OutputFile& file : Compiled().files)
            WriteWholeFile(folder / file.path, file.content);
        Load(folder);
    }

    // Points of the soles: the lowest of the mesh in the pose it is drawn in.
    std::vector<size_t> Soles() const {
        const WorldPoint* points = WorldGeometry.points + mesh_.firstPoint;
        const auto height = [&](size_t i) { return float{points[i].position.y}; };
        float lowest = 0;
        for (size_t i = 0; i < mesh_.pointCount; ++i)
            lowest = std::min(lowest, height(i));
        std::vector<size_t> soles;
        for (size_t i = 0; i < mesh_.pointCount; ++i) {
            if (height(i) < lowest + 1) soles.push_back(i);
        }
        return soles;
    }
};

constexpr float GROUND = -110;  // below the actor's position

}  // namespace

TEST_F(Zero, IsWithinTheLimitsAndNeedsNoRemark) {
    EXPECT_LE(Compiled().triangles, CHARACTER_MAX_TRIANGLES);
    EXPECT_LE(Compiled().points, CHARACTER_MAX_POINTS);
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

// While a sole point is on the ground, it must go back as fast as the character goes forward.
TEST_F(Zero, FeetDoNotSlideNorSink) {
    const struct {
        const char* file;
        uint32_t length;
        double speed;  // units a second, forward
    } rows[] = {{"zerorun.anm", 190, 537.5}, {"zerowalk.anm", 280, 187.5}, {"zeroback.anm", 260, -162.5}};
    const std::vector<size_t> soles = Soles();
    for (const auto& row : rows) {
        constexpr uint32_t STEP = 2;
        float deepest = 0;
        double contact = 0, slid = 0;
        std::vector<Vec3> before = PointsAt(row.file, 10);
        for (uint32_t time = 10 + STEP; time <= row.length; time += STEP) {
            const std::vector<Vec3> now = PointsAt(row.file, time);
            float nearest = 1e9;
            double away = 0;
            for (const size_t i : soles) {
                deepest = std::min(deepest, now[i].y - GROUND);
                if (now[i].y > nearest) continue;
                nearest = now[i].y;
                away = now[i].z - before[i].z - row.speed * STEP / CHARACTER_TIME_PER_SECOND;  // -z is ahead
            }
            if (nearest < GROUND + 2) {
                contact += std::abs(row.speed) * STEP / CHARACTER_TIME_PER_SECOND;
                slid += std::abs(away);
            }
            before = now;
        }
        EXPECT_GT(deepest, -3) << row.file;
        EXPECT_GT(contact, 60) << row.file;
        EXPECT_LT(slid / contact, 0.1) << row.file;
    }
}

TEST_F(Zero, ClipsThatFollowEachOtherMeet) {
    const struct {
        const char* from;
        uint32_t end;
        const char* to;
        uint32_t start;
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
        const auto a = PointsAt(row.from, row.end), b = PointsAt(row.to, row.start);
        double worst = 0;
        for (size_t i = 0; i < a.size(); ++i)
            worst = std::max(worst, double{std::hypot(a[i].x - b[i].x, a[i].y - b[i].y, a[i].z - b[i].z)});
        EXPECT_LT(worst, row.most) << row.from << " to " << row.to;
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
