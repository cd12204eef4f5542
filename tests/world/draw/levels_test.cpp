// The compiled levels, seen as the game sees them: from places over their floors nothing near is hidden by what is far.
#include "app/app_tables.h"
#include "core/testing.h"
#include "host/files.h"
#include "platform/timer.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "support/painters_order.h"
#include "support/pool_fixture.h"
#include "support/view.h"
#include "world/bsp.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

namespace {

constexpr float EYE_HEIGHT = 20.0f;  // low: an eye within a ceiling sees what nobody sees
constexpr uint32_t POLYGONS = 150;   // of a level that are tried as floors
constexpr int RAYS = 25;

struct LevelFiles {
    const char* folder;
    int level;  // index
};

void PrintTo(const LevelFiles& files, std::ostream* out) {
    *out << files.folder << ", level " << files.level + 1;
}

// Clip walls have no texel to see.
bool CanBeSeen(int polygon) {
    const TextureRecord* texture = PolygonTexture(WorldGeometry.polygons[polygon]);
    const uint8_t* row = TextureImage + texture->texelOffset;
    for (int y = 0; y < texture->height; ++y, row += TEXTURE_PAGE_PITCH) {
        if (std::any_of(row, row + texture->width, [](uint8_t texel) { return texel != 0; })) return true;
    }
    return false;
}

std::vector<Vec3> PlacesOverFloors() {
    std::vector<Vec3> places;
    const uint32_t step = WorldGeometry.file.polygons / POLYGONS + 1;
    for (uint32_t i = 0; i < WorldGeometry.file.polygons; i += step) {
        const PolyRecord& polygon = WorldGeometry.polygons[i];
        if (WorldGeometry.planes[polygon.plane].ny > -0.7f) continue;
        Vec3 place = {0, EYE_HEIGHT, 0};
        for (int k = 0; k < polygon.cornerCount; ++k) {
            const Vec3 p = WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + k].point].position;
            const float share = 1.0f / polygon.cornerCount;
            place = {place.x + p.x * share, place.y + p.y * share, place.z + p.z * share};
        }
        places.push_back(place);
    }
    return places;
}

class CompiledLevel : public testing::WithParamInterface<LevelFiles>, public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
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
    }
};

// Every leaf at most once, every marked leaf's character exactly once and right beside a leaf that is listed.
TEST_P(CompiledLevel, ListsNothingTwice) {
    std::mt19937 random(1);
    for (const Vec3& eye : PlacesOverFloors()) {
        FrameCount++;
        size_t marked = 0;
        for (uint32_t i = 0; i < WorldGeometry.leafCount; ++i) {
            const bool mark = random() % 4 == 0;
            WorldGeometry.leaves[i].frameStamp = mark ? FrameCount : uint16_t{0};
            marked += mark;
        }
        LookFrom(eye, 20, static_cast<float>(random() % 360));
        RenderWorld();
        std::map<int32_t, int> places[2];  // of leaves, of characters
        for (int i = 0; i < RenderListCount; ++i) {
            const int32_t entry = WorldGeometry.renderList[i];
            const bool isCharacter = entry >= CHARACTER_ENTRY;
            const int32_t leaf = isCharacter ? entry - CHARACTER_ENTRY : entry < 0 ? ~entry : entry;
            ASSERT_TRUE(places[isCharacter].emplace(leaf, i).second) << "leaf " << leaf;
        }
        ASSERT_EQ(places[1].size(), marked);
        for (const auto& [leaf, place] : places[0]) {
            const auto character = places[1].find(leaf);
            if (character == places[1].end()) continue;
            ASSERT_EQ(std::abs(character->second - place), 1) << "leaf " << leaf;
        }
    }
}

TEST_P(CompiledLevel, ShowsTheNearestPolygonOnEveryLineOfSight) {
    const PaintersOrderReport report = CheckPaintersOrder(PlacesOverFloors(), RAYS, 3, CanBeSeen);
    EXPECT_GT(report.crossings, 1000);
    EXPECT_EQ(report.faults, std::vector<std::string>{});
    // The checker must be able to find a fault.
    BspNode& root = WorldGeometry.nodes[0];
    const int16_t front = root.frontChild;
    root.frontChild = root.backChild;
    root.backChild = front;
    EXPECT_FALSE(CheckPaintersOrder(PlacesOverFloors(), RAYS, 3, CanBeSeen).faults.empty());
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
