// The compiled levels, seen as the game sees them: from places over their floors nothing near is hidden by what is far.
#include "app/app_tables.h"
#include "core/testing.h"
#include "host/files.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "support/painters_order.h"
#include "support/pool_fixture.h"
#include "world/bsp.h"
#include "world/world_tables.h"

#include <cmath>

namespace {

constexpr float EYE_HEIGHT = 60.0f;
constexpr size_t EYES = 40;
constexpr int RAYS = 25;

struct LevelFiles {
    const char* folder;
    int level;  // index
};

void PrintTo(const LevelFiles& files, std::ostream* out) {
    *out << files.folder << ", level " << files.level + 1;
}

Vec3 CentreOf(const PolyRecord& polygon) {
    Vec3 sum = {};
    for (int k = 0; k < polygon.cornerCount; ++k) {
        const Vec3 p = WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + k].point].position;
        sum = {sum.x + p.x, sum.y + p.y, sum.z + p.z};
    }
    const float n = polygon.cornerCount;
    return {sum.x / n, sum.y / n, sum.z / n};
}

// Clip walls have no texel to see.
bool CanBeSeen(int polygon) {
    const TextureRecord* texture = PolygonTexture(WorldGeometry.polygons[polygon]);
    if (texture == nullptr) return false;
    const uint8_t* row = TextureImage + texture->texelOffset;
    for (int y = 0; y < texture->height; ++y, row += TEXTURE_PAGE_PITCH) {
        for (int x = 0; x < texture->width; ++x) {
            if (row[x] != 0) return true;
        }
    }
    return false;
}

bool IsBelow(Vec3 p, const PolyRecord& ceiling) {
    const PlaneRecord& plane = WorldGeometry.planes[ceiling.plane];
    if (plane.ny <= 0.0f) return false;
    const Vec3 centre = CentreOf(ceiling);
    const float height = -(plane.nx * p.x + plane.ny * p.y + plane.nz * p.z + plane.d) / plane.ny;
    return height >= 0.0f && height < 2 * EYE_HEIGHT && std::fabs(centre.x - p.x) < 300 &&
           std::fabs(centre.z - p.z) < 300;
}

// Over floors that have the room: an eye within a ceiling sees what nobody sees.
std::vector<Vec3> PlacesOverFloors() {
    std::vector<Vec3> places;
    for (uint32_t i = 0; i < WorldGeometry.file.polygons; ++i) {
        const PolyRecord& polygon = WorldGeometry.polygons[i];
        if (WorldGeometry.planes[polygon.plane].ny > -0.7f) continue;
        const Vec3 p = CentreOf(polygon);
        bool hasRoom = true;
        for (uint32_t k = 0; k < WorldGeometry.file.polygons; ++k) {
            hasRoom = hasRoom && !IsBelow(p, WorldGeometry.polygons[k]);
        }
        if (hasRoom) places.push_back({p.x, p.y + EYE_HEIGHT, p.z});
    }
    std::vector<Vec3> some;
    for (size_t i = 0; i < places.size(); i += places.size() / EYES + 1)
        some.push_back(places[i]);
    return some;
}

class CompiledLevel : public testing::WithParamInterface<LevelFiles>, public PoolFixture {};

TEST_P(CompiledLevel, ShowsTheNearestPolygonOnEveryLineOfSight) {
    UseTestMachine();
    SetTestDataFolder(GetParam().folder);
    ScreenAspect = 4.0f / 3.0f;
    ProjectionScaleX = 4.0f;
    ProjectionScaleY = 3.0f;
    const LevelInfo& level = LevelTable[GetParam().level];
    ASSERT_TRUE(std::filesystem::exists(HostResolvePath(level.worldFile))) << "build the target `content` first";
    LoadBspWorld(level.worldFile);
    LoadTextureFile(GetParam().level);
    SetStaticMarks();
    GenerateNodeRadii();
    FarDistance = 60000.0f;

    const PaintersOrderReport report = CheckPaintersOrder(PlacesOverFloors(), RAYS, 3, CanBeSeen);
    EXPECT_GT(report.crossings, 1000);
    EXPECT_EQ(report.faults, std::vector<std::string>{});
}

constexpr const char* TEST_LEVELS = SOURCE_FOLDER "/tests/levels/data";
INSTANTIATE_TEST_SUITE_P(TestLevels, CompiledLevel,
                         testing::Values(LevelFiles{TEST_LEVELS, 0}, LevelFiles{TEST_LEVELS, 1}));

#ifndef TARNWICK_SANITIZED  // once is enough
constexpr const char* CONTENT = BUILD_FOLDER "/data";
INSTANTIATE_TEST_SUITE_P(Content, CompiledLevel,
                         testing::Values(LevelFiles{CONTENT, 0}, LevelFiles{CONTENT, 1}, LevelFiles{CONTENT, 2},
                                         LevelFiles{CONTENT, 3}, LevelFiles{CONTENT, 4}, LevelFiles{CONTENT, 5},
                                         LevelFiles{CONTENT, 6}, LevelFiles{CONTENT, 7}));
#endif

}  // namespace
