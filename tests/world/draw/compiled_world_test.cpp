// A world as the map compiler made it, loaded and walked by the game.
#include "render/render_tables.h"
#include "support/painters_order.h"
#include "support/pool_fixture.h"
#include "world/bsp.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

namespace {

class CompiledWorld : public PoolFixture {};

Vec3 Middle(const PolyRecord& polygon) {
    Vec3 sum{0, 0, 0};
    const auto count = static_cast<float>(polygon.cornerCount);
    for (int k = 0; k < polygon.cornerCount; ++k) {
        const Vec3 p = WorldGeometry.points[WorldGeometry.polyVertices[polygon.firstVertex + k].point].position;
        sum = {sum.x + p.x / count, sum.y + p.y / count, sum.z + p.z / count};
    }
    return sum;
}

// Where a player's head can be: above every fifth floor.
std::vector<Vec3> EyesAboveFloors() {
    std::vector<Vec3> eyes;
    for (uint32_t i = 0; i < WorldGeometry.file.polygons; i += 5) {
        const PolyRecord polygon = WorldGeometry.polygons[i];
        if (WorldGeometry.planes[polygon.plane].ny > -0.7f) continue;
        const Vec3 floor = Middle(polygon);
        eyes.push_back({floor.x, floor.y + 170.0f, floor.z});
    }
    return eyes;
}

TEST_F(CompiledWorld, IsPaintedInTheRightOrderFromWhereverThePlayerStands) {
    for (const char* world : {"level1/assault.bgm", "level2/bigone.bgm"}) {
        FreshPool(POOL_BYTES);
        LoadBspWorld((std::string(SOURCE_FOLDER "/tests/levels/data/game/data/levels/") + world).c_str());
        FarDistance = 20000.0f;
        ScreenAspect = ProjectionScaleX = ProjectionScaleY = 1.0f;
        GenerateNodeRadii();
        const PaintersOrderReport report = CheckPaintersOrder(EyesAboveFloors(), 40, 3);
        EXPECT_GT(report.crossings, 1000) << world;
        EXPECT_EQ(report.faults, std::vector<std::string>{}) << world;
    }
}

}  // namespace
