// lights.lmp and the way from a light byte to a corner's intensity.
#include "world/light_map.h"

#include "app/app_tables.h"
#include "character/character_tables.h"
#include "platform/timer.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr size_t COUNTS_OFFSET = 12;

// Light bytes 1, 2, ... for the points, -1, -2, ... for the corners of one polygon, and values that all differ.
std::vector<uint8_t> LightMapOf(uint8_t points) {
    std::vector<uint8_t> bytes(COUNTS_OFFSET, 0xAB);
    bytes.insert(bytes.end(), {0, 0, 0, points, 0, 0, 0, 1});
    for (uint8_t i = 1; i <= points; ++i)
        bytes.push_back(i);
    for (uint8_t i = 1; i <= 8; ++i)
        bytes.push_back(static_cast<uint8_t>(-i));
    bytes.insert(bytes.end(), {0, 150, 0xFF, 0xCE});            // 1.5 and -0.5
    bytes.insert(bytes.end(), {0, 0, 0x23, 0x28, 0, 1, 0, 0});  // 9000 and 65536
    bytes.insert(bytes.end(), {0, 2, 0, 1});                    // mode, plain brightening
    bytes.insert(bytes.end(), {0, 63, 0, 62, 0, 61, 0, 3, 0, 2, 0, 1});
    return bytes;
}

// A wall 100 in front of the eye, with light bytes 10, 20, 30, 40 at its points.
class LightMap : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        world_.AddLeaf({{{-1, -1, 100}, {1, -1, 100}, {1, 1, 100}, {-1, 1, 100}}});
        world_.Publish();
        for (uint32_t i = 0; i < 4; ++i) {
            WorldGeometry.pointLightBase[i] = static_cast<int8_t>(10 * (i + 1));
            WorldGeometry.viewPoints[i].z = 100.0f;
        }
        for (int i = 0; i < 128; ++i)
            IntensityTable[i] = static_cast<float>(i) * 256.0f;
        std::fill(std::begin(CornerLightBase), std::end(CornerLightBase), int8_t{0});
        std::fill(std::begin(IntensityCacheStamps), std::end(IntensityCacheStamps), uint16_t{0});
        LightLevel = 0.5f;
        LightContrast = 1.0f;
        LightMode = 0;
        ApplyLightLevel();
        FadeDistance = 200.0f;
        FogNearDistance = 0.0f;
        GlideWindowOpen = 1;  // no distance fade
        FrameCount = 9;
    }
    void TearDown() override {
        GlideWindowOpen = 0;
        PoolFixture::TearDown();
    }

    // Levels shown at the four corners.
    std::vector<float> Shade() {
        ShadePolygon(0);
        std::vector<float> levels;
        for (int k = 0; k < 4; ++k)
            levels.push_back(WorldGeometry.polyVertices[k].intensity / 256.0f);
        return levels;
    }
    void UseCornerLight() { WorldGeometry.polygons[0].shading = SHADE_CORNER_LIGHT; }
    void NextFrame() { ++FrameCount; }

    TinyWorld world_;
};

using Levels = std::vector<float>;

TEST_F(LightMap, BringsLightBytesAndLevelValues) {
    GlideWindowOpen = 0;
    LoadLightMap(FileOf(LightMapOf(3)));
    EXPECT_EQ(WorldGeometry.pointLightBase[0], 1);
    EXPECT_EQ(WorldGeometry.pointLightBase[3], 40) << "a point that the file does not name";
    EXPECT_EQ(CornerLightBase[7], -8);
    EXPECT_FLOAT_EQ(LightLevel, 1.5f);
    EXPECT_FLOAT_EQ(LightContrast, -0.5f);
    EXPECT_EQ(FadeDistance, 9000.0f);
    EXPECT_EQ(FarDistance, 65536.0f);
    EXPECT_EQ(FogNearDistance, 0.0f);
    EXPECT_EQ(LightMode, 2);
    EXPECT_EQ(PlainBrightening, 1);
    EXPECT_EQ(DarkColour[2], 1);
}

TEST_F(LightMap, HasOtherDistancesAndLessContrastWithTheAccelerator) {
    for (const auto& [level, contrast] : {std::pair{0, 0.8f}, {1, 0.3f}}) {
        CurrentLevel = level;
        LoadLightMap(FileOf(LightMapOf(3)));
        EXPECT_FLOAT_EQ(LightContrast, -0.5f * contrast);
    }
    CurrentLevel = 0;
    EXPECT_EQ(FogNearDistance, 2000.0f);
    EXPECT_EQ(FadeDistance, 9196.0f);
    EXPECT_EQ(FarDistance, 5796.0f);
}

TEST_F(LightMap, ThatIsMissingOrDamagedChangesNothing) {
    LoadLightMap("no such lights.lmp");
    const std::vector<uint8_t> good = LightMapOf(3);
    std::vector<std::vector<uint8_t>> damaged;
    for (size_t length = 0; length < good.size(); ++length) {
        damaged.emplace_back(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length));
    }
    const auto withCounts = [&](std::vector<uint8_t> counts) {
        std::vector<uint8_t> bytes = good;
        bytes.resize(bytes.size() + 20000 * 9);
        std::copy(counts.begin(), counts.end(), bytes.begin() + COUNTS_OFFSET);
        return bytes;
    };
    damaged.push_back(withCounts({0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 1}));
    damaged.push_back(withCounts({0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF}));
    damaged.push_back(withCounts({0, 0, 0x23, 0x2D, 0, 0, 0, 1}));  // 9005 of 4 + 9000 points
    damaged.push_back(withCounts({0, 0, 0, 1, 0, 0, 0x4E, 0x21}));  // 20001 polygons
    for (const std::vector<uint8_t>& bytes : damaged) {
        EXPECT_EQ(FatalOf([&] { LoadLightMap(FileOf(bytes)); }), "0: Not a valid light map file") << bytes.size();
    }
    EXPECT_EQ(WorldGeometry.pointLightBase[0], 10);
    EXPECT_EQ(LightLevel, 0.5f);
    EXPECT_EQ(FadeDistance, 200.0f);
}

TEST_F(LightMap, ScalesAndMayInvertTheLight) {
    EXPECT_EQ(Shade(), (Levels{42, 52, 62, 72}));  // 0.5 x 64 + byte
    NextFrame();
    LightMode = 2;
    LightLevel = 1.0f;
    ApplyLightLevel();
    WorldGeometry.pointLightBase[0] = 127;
    WorldGeometry.pointLightBase[1] = 0;
    WorldGeometry.pointLightBase[2] = -100;
    EXPECT_EQ(Shade(), (Levels{0, 64, 127, 24}));
}

TEST_F(LightMap, FadesWithDepthInSoftwareOnly) {
    WorldGeometry.viewPoints[0].z = 0.5f;    // as if at 1
    WorldGeometry.viewPoints[1].z = 200.0f;  // at the end of the fade
    WorldGeometry.viewPoints[2].z = 900.0f;
    LightBias = 100.0f;
    EXPECT_EQ(Shade(), (Levels{110, 120, 127, 127}));
    NextFrame();
    GlideWindowOpen = 0;
    EXPECT_EQ(Shade(), (Levels{109, 0, 0, 70}));
    for (const float bad : {0.0f, -5.0f, NAN}) {
        NextFrame();
        FadeDistance = bad;
        EXPECT_EQ(Shade(), (Levels{0, 0, 0, 0})) << "fade distance " << bad;
    }
}

TEST_F(LightMap, LightsACharactersPointFromTheLampsThatItFaces) {
    WorldGeometry.points[2].normal = {0, 0, 1};
    CharacterLightCount = 3;
    CharacterLightList[0] = {0, {0, 0.6f, 0.8f}, 0.5f};
    CharacterLightList[1] = {0, {0, 0, -1}, 1.0f};
    CharacterLightList[2] = {0, {0, 0, 1}, 0.25f};
    const auto level = [] {
        ShadeCharacterPoint(2);
        return IntensityCache[2] / 256.0f;
    };
    EXPECT_EQ(level(), 73);  // 32 + (0.4 + 0.25) x 64
    LightContrast = 0.5f;
    ApplyLightLevel();
    EXPECT_EQ(level(), 52);
    LightMode = 2;
    ApplyLightLevel();
    EXPECT_EQ(level(), 75);  // 96 - 20.8
    GlideWindowOpen = 0;     // half of the way that light fades in
    EXPECT_EQ(level(), 37);
    CharacterLightCount = 0;
}

TEST_F(LightMap, HasNoCornerBytesBeyondItsTable) {
    WorldGeometry.file.polygons = CORNER_LIGHT_POLYGONS + 1;
    std::vector<uint16_t> stamps(CornerLightStampCount());
    std::vector<PolyRecord> polygons(CORNER_LIGHT_POLYGONS + 1, WorldGeometry.polygons[0]);
    for (PolyRecord& polygon : polygons)
        polygon.shading = SHADE_CORNER_LIGHT;
    WorldGeometry.cornerLightStamps = stamps.data();
    WorldGeometry.polygons = polygons.data();
    CornerLightBase[CORNER_LIGHT_POLYGONS * 8 - 8] = 20;
    ShadePolygon(CORNER_LIGHT_POLYGONS - 1);
    EXPECT_EQ(WorldGeometry.polyVertices[0].intensity, 52 * 256.0f);
    ShadePolygon(CORNER_LIGHT_POLYGONS);
    EXPECT_EQ(WorldGeometry.polyVertices[0].intensity, 32 * 256.0f);
}

}  // namespace
