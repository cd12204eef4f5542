// The light of a generated map of about 2,100 brushes. What to look at: how many rays a second the bake gets through
// beside the ray tracer alone (at least 0.8 of its rate), and how much faster two threads are than one (at least 1.7
// times, on a machine with two idle cores).
#include "mapc/light.h"
#include "rounds.h"
#include "tools/mapc/map_builder.h"

#include "mapc/bake_spots.h"
#include "tools/mapc/generated_map.h"

#include <embree3/rtcore.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

constexpr size_t DIRECTIONS = 256;
constexpr int ROUNDS = 7;

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

// The same world and the rays that the bake sends from every fourth point, given to the ray tracer directly.
class BareRays {
public:
    explicit BareRays(const WorldFile& world)
        : device_(rtcNewDevice("isa=sse4.2,threads=1")), scene_(rtcNewScene(device_)) {
        rtcSetSceneFlags(scene_, RTC_SCENE_FLAG_ROBUST);
        AddTriangles(world);
        const std::vector<Vec3> directions = HemisphereDirections(DIRECTIONS);
        for (size_t i = 0; i < world.points.size(); i += 4) {
            const Vec3 outward = -Widened(world.points[i].normal);
            const SurfaceFrame frame(outward);
            for (const Vec3& direction : directions)
                AddRay(Widened(world.points[i].position) + outward * SPOT_HEIGHT, frame.Turned(direction));
        }
    }
    ~BareRays() {
        rtcReleaseScene(scene_);
        rtcReleaseDevice(device_);
    }
    BareRays(const BareRays&) = delete;
    BareRays& operator=(const BareRays&) = delete;

    size_t Count() const { return rays_.size(); }

    void Trace() {
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        for (const RTCRay& ray : rays_) {
            RTCRayHit traced{ray, {}};
            traced.hit.geomID = RTC_INVALID_GEOMETRY_ID;
            rtcIntersect1(scene_, &context, &traced);
            hits_ += traced.hit.geomID == 0;
        }
    }

private:
    void AddTriangles(const WorldFile& world) {
        std::vector<std::array<unsigned, 3>> triangles;
        for (const WorldPolygon& polygon : world.polygons) {
            const auto point = [&](size_t k) { return world.corners[polygon.firstCorner + k].point; };
            for (size_t k = 2; k < polygon.cornerCount; ++k)
                triangles.push_back({point(0), point(k), point(k - 1)});
        }
        RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* place = static_cast<float*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 12, world.points.size()));
        for (const WorldPoint& point : world.points)
            place = std::copy(point.position.begin(), point.position.end(), place);
        auto* corner = static_cast<unsigned*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 12, triangles.size()));
        for (const auto& triangle : triangles)
            corner = std::copy(triangle.begin(), triangle.end(), corner);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(scene_, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(scene_);
    }

    void AddRay(const Vec3& from, const Vec3& direction) {
        RTCRay ray{};
        ray.org_x = static_cast<float>(from.x);
        ray.org_y = static_cast<float>(from.y);
        ray.org_z = static_cast<float>(from.z);
        ray.dir_x = static_cast<float>(direction.x);
        ray.dir_y = static_cast<float>(direction.y);
        ray.dir_z = static_cast<float>(direction.z);
        ray.tfar = 1e6F;
        ray.mask = ~0U;
        rays_.push_back(ray);
    }

    RTCDevice device_;
    RTCScene scene_;
    std::vector<RTCRay> rays_;
    size_t hits_ = 0;
};

double WallSeconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main() {
    const MapFile map = ParseMap(GeneratedRooms(8).Key("subdivide", "512").Text(), "generated");
    const std::vector<Material> materials = TestMaterials();
    const CompiledLevel level = CompileMap(map, {materials}, 0, {LightQuality::None, 1, {}});
    const Brushes brushes = BuildBrushes(map, materials);
    const LevelSettings settings = ReadSettings(map, std::nullopt);
    const std::vector<PointLight> lights = ReadLights(map);
    const LightSources sources{map.name, settings, lights, brushes, materials, level.placement};
    const auto bake = [&](int threads) {
        return LightWorld(level.world, sources, {LightQuality::Full, threads, {}}).rays;
    };

    BareRays bare(level.world);
    Rounds rounds;
    const size_t tracer =
        rounds.Add("a ray of the ray tracer alone", static_cast<double>(bare.Count()), [&] { bare.Trace(); });
    const size_t whole = rounds.Add("a ray of the bake", static_cast<double>(bake(1)), [&] { bake(1); });
    rounds.Run(ROUNDS);
    rounds.Print(tracer);
    rounds.PrintAgainst(whole, tracer, 1 / 0.8);

    std::vector<double> ratios;
    for (int i = 0; i < ROUNDS; ++i) {
        const double one = WallSeconds([&] { bake(1); });
        ratios.push_back(one / WallSeconds([&] { bake(2); }));
    }
    std::sort(ratios.begin(), ratios.end());
    std::printf("two threads: %.2f times as fast as one (target 1.70)\n", ratios[ROUNDS / 2]);
    return 0;
}
