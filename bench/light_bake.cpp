// The light of a generated map of about 2,100 brushes. What to look at: how many rays a second the bake gets through
// beside the ray tracer alone (at least 0.8 of its rate), and how much faster two threads are than one (at least 1.7
// times, on a machine with two idle cores).
#include "mapc/light.h"
#include "rounds.h"
#include "tools/mapc/map_builder.h"

#include "generated_map.h"
#include "mapc/bake_spots.h"
#include "mapc/ray_tracer.h"

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
    explicit BareRays(const WorldFile& world) {
        tracer_.Add(0, TrianglesOf(world));
        tracer_.Commit();
        const std::vector<Vec3> directions = HemisphereDirections(DIRECTIONS);
        for (size_t i = 0; i < world.points.size(); i += 4) {
            const Vec3 outward = -Widened(world.points[i].normal);
            const Vec3 spot = Widened(world.points[i].position) + outward * SPOT_HEIGHT;
            const SurfaceFrame frame(outward);
            for (const Vec3& direction : directions)
                rays_.push_back(RayOf(spot, frame.Turned(direction), 1e6F));
        }
    }

    size_t Count() const { return rays_.size(); }

    void Trace() {
        RayContext context;
        InitRayContext(context);
        for (const RTCRay& ray : rays_) {
            RTCRayHit traced{ray, {}};
            traced.hit.geomID = RTC_INVALID_GEOMETRY_ID;
            tracer_.Intersect(context, traced);
            hits_ += traced.hit.geomID == 0;
        }
    }

private:
    static std::vector<RayTriangle> TrianglesOf(const WorldFile& world) {
        std::vector<RayTriangle> triangles;
        for (const WorldPolygon& polygon : world.polygons) {
            const auto place = [&](size_t k) {
                return Widened(world.points[world.corners[polygon.firstCorner + k].point].position);
            };
            for (size_t k = 2; k < polygon.cornerCount; ++k)
                triangles.push_back({place(0), place(k), place(k - 1)});
        }
        return triangles;
    }

    RayTracer tracer_;
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
