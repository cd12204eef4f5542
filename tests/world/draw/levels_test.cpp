// The compiled levels as the game sees them: seen from places over their floors, nothing far hides anything near.
#include "app/app_tables.h"
#include "camera/camera_tables.h"
#include "host/files.h"
#include "math/vectors.h"
#include "math/world_planes.h"
#include "platform/timer.h"
#include "records/levels.h"
#include "render/render_tables.h"
#include "render/textures.h"
#include "support/pool_fixture.h"
#include "support/view.h"
#include "testing/test_machine.h"
#include "world/bsp.h"
#include "world/draw/render_world.h"
#include "world/world_tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace {

constexpr float EYE_HEIGHT = 20.0f;  // above the floor; low, because an eye within a ceiling sees what nobody sees
constexpr size_t PLACES = 80;        // of a level, at most
constexpr int RAYS = 25;

struct LevelFiles {
    const char* folder;
    int level;  // index
};

void PrintTo(const LevelFiles& files, std::ostream* out) {
    *out << files.folder << ", level " << files.level + 1;
}

// False for clip walls, whose texture has no texel that can be seen.
bool CanBeSeen(int polygon) {
    const TextureRecord* texture = PolygonTexture(WorldGeometry.polygons[polygon]);
    const uint8_t* row = TextureImage + texture->texelOffset;
    for (int y = 0; y < texture->height; ++y, row += TEXTURE_PAGE_PITCH) {
        if (std::any_of(row, row + texture->width, [](uint8_t texel) { return texel != 0; })) return true;
    }
    return false;
}

// Hidden floors lie within walls, too, where nobody looks from.
std::vector<Vec3> PlacesOverFloors() {
    std::vector<int> floors;
    for (int i = 0; i < static_cast<int>(WorldGeometry.file.polygons); ++i) {
        const PolyRecord& polygon = WorldGeometry.polygons[i];
        if (WorldGeometry.planes[polygon.plane].ny <= -0.7f && CanBeSeen(i)) floors.push_back(i);
    }
    std::vector<Vec3> places;
    for (size_t i = 0; i < floors.size(); i += floors.size() / PLACES + 1) {
        const PolyRecord& polygon = WorldGeometry.polygons[floors[i]];
        Vec3 place = {0, EYE_HEIGHT, 0};
        for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
            const Vec3& p = CornerPosition(polygon, k);
            const float share = 1.0f / polygon.cornerCount;
            place = place + Vec3{p.x * share, p.y * share, p.z * share};
        }
        places.push_back(place);
    }
    return places;
}

constexpr double EDGE_MARGIN = 0.01;   // hits nearer than this to an edge are left out: either side may be right
constexpr double DEPTH_MARGIN = 0.05;  // polygons nearer than this to each other have no order
constexpr double VIEW_MARGIN = 0.95;   // part of the view volume in which rays are cast

struct Ray {
    DoubleVec3 origin, direction;
};

// The distance along the ray at which it meets the polygon, or infinity.
double Hit(const Ray& ray, int number) {
    const PolyRecord& polygon = WorldGeometry.polygons[number];
    const PlaneRecord& plane = WorldGeometry.planes[polygon.plane];
    const DoubleVec3 normal = {plane.nx, plane.ny, plane.nz}, way = ray.direction;
    const double distance = Dot(normal, ray.origin) + plane.d, speed = Dot(normal, way);
    constexpr double MISS = std::numeric_limits<double>::infinity();
    if (distance >= 0.0 || speed < 1e-6) return MISS;
    const double t = -distance / speed;
    const DoubleVec3 hit = ray.origin + DoubleVec3{t * way.x, t * way.y, t * way.z};
    for (uint32_t k = 0; k < polygon.cornerCount; ++k) {
        const DoubleVec3 corner = ToDouble(CornerPosition(polygon, k));
        const DoubleVec3 edge = ToDouble(CornerPosition(polygon, (k + 1) % polygon.cornerCount)) - corner;
        if (Dot(normal, Cross(edge, hit - corner)) < EDGE_MARGIN * std::sqrt(Dot(edge, edge))) return MISS;
    }
    return t;
}

// The polygons that face the eye, in the order of drawing.
std::vector<int> DrawnPolygons() {
    std::vector<int> drawn;
    for (int i = 0; i < RenderListCount; ++i) {
        const int32_t entry = WorldGeometry.renderList[i];
        if (entry >= CHARACTER_ENTRY) continue;
        const BspLeaf& leaf = WorldGeometry.leaves[entry < 0 ? ~entry : entry];
        for (int p = leaf.firstPolygon; p < leaf.firstPolygon + leaf.polygonCount; ++p)
            if (PolySideOfCamera(p) < 0 && CanBeSeen(p)) drawn.push_back(p);
    }
    return drawn;
}

std::string Describe(const char* what, Vec3 eye, int polygon, int other) {
    char text[160];
    std::snprintf(text, sizeof text, "from (%.1f, %.1f, %.1f): polygon %d %s %d", double{eye.x}, double{eye.y},
                  double{eye.z}, polygon, what, other);
    return text;
}

// Whether the list that RenderWorld makes of the loaded world shows it as it is, along rays in random directions: of
// two polygons on one line of sight the nearer is drawn later, and the nearest of all is drawn at all.
class PaintersOrder {
public:
    void LookAround(Vec3 eye) {
        const float pitch = Between(-60.0f, 60.0f);
        LookFrom(eye, pitch, Between(0.0f, 360.0f));
        FrameCount = static_cast<uint16_t>(FrameCount + 1);
        RenderWorld();
        const std::vector<int> drawn = DrawnPolygons();
        for (int i = 0; i < RAYS; ++i)
            Cast(RandomRay(eye), eye, drawn);
    }

    int crossings = 0;  // polygons met by the rays, so that a pass can be told from rays into the void
    std::vector<std::string> faults;

private:
    float Between(float low, float high) {
        const double unit = static_cast<double>(random_()) / std::mt19937::max();
        return low + static_cast<float>(unit) * (high - low);
    }

    Ray RandomRay(Vec3 eye) {
        const float limit = static_cast<float>(VIEW_MARGIN);
        const float x = Between(-limit, limit);
        RotateVectorT(x, Between(-limit, limit) / ScreenAspect, 1.0f, CameraRotation);
        return {{eye.x, eye.y, eye.z}, {RotatedVector.x, RotatedVector.y, RotatedVector.z}};
    }

    void Cast(const Ray& ray, Vec3 eye, const std::vector<int>& drawn) {
        double nearest = std::numeric_limits<double>::infinity();
        int nearestPolygon = -1;
        for (const int polygon : drawn) {
            const double t = Hit(ray, polygon);
            if (std::isinf(t)) continue;
            ++crossings;
            if (t > nearest + DEPTH_MARGIN)
                faults.push_back(Describe("is drawn over the nearer", eye, polygon, nearestPolygon));
            if (t < nearest) nearest = t, nearestPolygon = polygon;
        }
        CheckNothingIsMissing(ray, eye, nearest, nearestPolygon);
    }

    void CheckNothingIsMissing(const Ray& ray, Vec3 eye, double nearest, int nearestPolygon) {
        for (uint32_t p = 0; p < WorldGeometry.file.polygons; ++p) {
            const double t = CanBeSeen(static_cast<int>(p)) ? Hit(ray, static_cast<int>(p)) : nearest;
            if (t < nearest - DEPTH_MARGIN && t < double{FarDistance}) {
                faults.push_back(Describe("is culled, which hides", eye, static_cast<int>(p), nearestPolygon));
            }
        }
    }

    std::mt19937 random_{3};
};

PaintersOrder CheckPaintersOrder() {
    PaintersOrder order;
    for (const Vec3& eye : PlacesOverFloors())
        order.LookAround(eye);
    return order;
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

TEST_P(CompiledLevel, ShowsTheNearestPolygonOnEveryLineOfSight) {
    const PaintersOrder order = CheckPaintersOrder();
    EXPECT_GT(order.crossings, 1000);
    EXPECT_EQ(order.faults, std::vector<std::string>{});
    // The checker must be able to find a fault.
    BspNode& root = WorldGeometry.nodes[0];
    const int16_t front = root.frontChild;
    root.frontChild = root.backChild;
    root.backChild = front;
    EXPECT_FALSE(CheckPaintersOrder().faults.empty());
}

constexpr const char* TEST_LEVELS = SOURCE_FOLDER "/tests/levels/data";
INSTANTIATE_TEST_SUITE_P(TestLevels, CompiledLevel,
                         testing::Values(LevelFiles{TEST_LEVELS, 0}, LevelFiles{TEST_LEVELS, 1}));

#ifndef TARNWICK_SANITIZED  // once is enough
constexpr const char* CONTENT = BUILD_FOLDER "/data";
std::vector<LevelFiles> ShippedLevels() {
    std::vector<LevelFiles> all;
    for (int level = 0; level < LEVEL_COUNT; ++level)
        all.push_back({CONTENT, level});
    return all;
}
INSTANTIATE_TEST_SUITE_P(Content, CompiledLevel, testing::ValuesIn(ShippedLevels()));
#endif

}  // namespace
