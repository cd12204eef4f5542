// What a damaged lights.lmp and a polygon beyond the tables do, and kinds of light that no map compiler writes. How
// light looks is tested by the golden pictures.
#include "world/light_map.h"

#include "platform/timer.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "support/pool_fixture.h"
#include "support/throwing_fatal.h"
#include "support/tiny_world.h"
#include "world/world_tables.h"

#include <algorithm>

namespace {

constexpr size_t COUNTS_OFFSET = 12, VALUES_BYTES = 28;

// A file for three points and one polygon.
std::vector<uint8_t> GoodFile() {
    std::vector<uint8_t> bytes(COUNTS_OFFSET + 8 + 3 + 8 + VALUES_BYTES);
    bytes[COUNTS_OFFSET + 3] = 3;
    bytes[COUNTS_OFFSET + 7] = 1;
    return bytes;
}

class LightMap : public PoolFixture {
protected:
    void SetUp() override {
        PoolFixture::SetUp();
        world_.AddLeaf({{{-1, -1, 100}, {1, -1, 100}, {1, 1, 100}, {-1, 1, 100}}});
        world_.Publish();
        WorldGeometry.pointLightBase[0] = 10;
        for (int i = 0; i < 128; ++i)
            IntensityTable[i] = static_cast<float>(i) * 256.0f;
        std::fill(std::begin(CornerLightBase), std::end(CornerLightBase), int8_t{0});
        LightLevel = 0.5f;
        LightContrast = 1.0f;
        LightMode = 0;
        ApplyLightLevel();
        FadeDistance = 200.0f;
        GlideWindowOpen = 1;  // no distance fade
    }
    void TearDown() override {
        GlideWindowOpen = 0;
        PoolFixture::TearDown();
    }

    TinyWorld world_;
};

TEST_F(LightMap, ThatIsMissingOrDamagedChangesNothing) {
    LoadLightMap("no such lights.lmp");
    const std::vector<uint8_t> good = GoodFile();
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

TEST_F(LightMap, LightsFourCornersAtOnceAsItLightsThePolygonWhateverItsKind) {
    GlideWindowOpen = 0;
    const PolyRecord& polygon = WorldGeometry.polygons[0];
    PolyVertex* const corners = WorldGeometry.polyVertices + polygon.firstVertex;
    const Float4 depths = {5, 50, 150, 250};
    for (const uint8_t kind : {SHADE_CORNER_LIGHT, SHADE_POINT_LIGHT, uint8_t{2}, uint8_t{255}}) {
        WorldGeometry.polygons[0].shading = kind;
        for (int k = 0; k < 4; ++k) {
            const auto byte = static_cast<int8_t>(10 * k);
            corners[k].intensity = static_cast<float>(k);
            WorldGeometry.viewPoints[corners[k].point].z = depths[k];
            WorldGeometry.pointLightBase[corners[k].point] = byte;
            CornerLightBase[k] = static_cast<int8_t>(60 - byte);
        }
        FrameCount++;  // forgets the points' intensities
        const Float4 all = CornerIntensities(0, 0, depths);
        ShadePolygon(0);
        for (int k = 0; k < 4; ++k)
            EXPECT_EQ(all[k], corners[k].intensity) << int{kind} << " " << k;
    }
}

}  // namespace
