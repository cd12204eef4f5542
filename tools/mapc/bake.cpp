#include "mapc/bake.h"

#include "mapc/bake_rays.h"
#include "mapc/bake_spots.h"
#include "mapc/bake_threads.h"

#include <map>
#include <numeric>
#include <optional>

namespace {

constexpr size_t RAYS = 256;  // rays over the hemisphere of a spot
constexpr size_t RAYS_FAST = 32;
constexpr size_t CENTRES_MAX = 8;
constexpr double LIGHT_MIN = 0.02;  // light bytes; for less no ray is sent
// The share of the light that a shining surface sheds that it also shows itself. More would wash out its colours.
constexpr double OWN_PART = 0.5;
constexpr double PI = 3.14159265358979323846;
constexpr double PATCH_NEAR = 2;   // a shining surface is divided until its parts are this many times their size away
constexpr double PATCH_SIZE = 24;  // or smaller than this
constexpr size_t NONE = ~size_t{0};

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

// Each place whose light is computed on its own, and for each corner and point of the world its receiver.
struct Receivers {
    std::vector<Receiver> list;
    std::vector<size_t> ofCorner;  // NONE where nothing is drawn
    std::vector<size_t> ofPoint;   // NONE where no drawn polygon is lit by points
};

class ReceiverFinder {
public:
    explicit ReceiverFinder(const BakeInput& input) : input_(input), world_(input.world) {}

    Receivers Find() {
        found_.ofCorner.assign(world_.corners.size(), NONE);
        found_.ofPoint.assign(world_.points.size(), NONE);
        for (const WorldPolygon& polygon : world_.polygons) {
            if (input_.looks[polygon.texture].drawn) Add(polygon);
        }
        return std::move(found_);
    }

private:
    void Add(const WorldPolygon& polygon) {
        Vec3 centre;
        for (size_t i = polygon.firstCorner; i < size_t{polygon.firstCorner} + polygon.cornerCount; ++i)
            centre = centre + Widened(world_.points[world_.corners[i].point].position);
        centre = centre * (1.0 / polygon.cornerCount);
        for (size_t i = polygon.firstCorner; i < size_t{polygon.firstCorner} + polygon.cornerCount; ++i) {
            const size_t point = world_.corners[i].point;
            const double light = input_.looks[polygon.texture].light;
            const auto [entry, isNew] = numbers_.try_emplace({point, light}, found_.list.size());
            if (isNew) found_.list.push_back({Widened(world_.points[point].position), Outward(point), {}, light});
            found_.ofCorner[i] = entry->second;
            if (polygon.shading == WORLD_POINT_LIGHT) found_.ofPoint[point] = entry->second;
            Receiver& receiver = found_.list[entry->second];
            if (receiver.polygonCentres.size() < CENTRES_MAX) receiver.polygonCentres.push_back(centre);
        }
    }

    Vec3 Outward(size_t point) const { return -Widened(world_.points[point].normal); }

    const BakeInput& input_;
    const WorldFile& world_;
    Receivers found_;
    std::map<std::pair<size_t, double>, size_t>
        numbers_;  // receivers by point and own light: neighbouring polygons agree on their border
};

// The world as fans of triangles for rays, and for each triangle the corners whose light it shows.
struct Fans {
    RaySurfaces surfaces;
    std::vector<std::array<size_t, 3>> corners;  // for each solid triangle its corners in WorldFile::corners
    std::vector<size_t> polygons;                // for each solid triangle its polygon
};

void AddFan(const BakeInput& input, size_t number, Fans& fans) {
    const WorldPolygon& polygon = input.world.polygons[number];
    const SurfaceLook& look = input.looks[polygon.texture];
    const auto place = [&](size_t corner) {
        return Widened(input.world.points[input.world.corners[corner].point].position);
    };
    const size_t first = polygon.firstCorner;
    for (size_t i = first + 2; i < first + polygon.cornerCount; ++i) {
        // The order is turned round: the corners' product points into the solid, but must point off the surface here.
        const RayTriangle triangle{place(first), place(i), place(i - 1)};
        if (look.cover < 1) {
            fans.surfaces.veils.push_back(triangle);
            fans.surfaces.veilCover.push_back(look.cover);
        } else {
            fans.surfaces.solid.push_back(triangle);
            fans.corners.push_back({first, i, i - 1});
            fans.polygons.push_back(number);
        }
    }
}

Fans FansOf(const BakeInput& input) {
    Fans fans;
    for (size_t i = 0; i < input.world.polygons.size(); ++i) {
        if (input.looks[input.world.polygons[i].texture].drawn) AddFan(input, i, fans);
    }
    for (const Winding& face : input.sky) {
        for (size_t i = 2; i < face.size(); ++i)
            fans.surfaces.sky.push_back({face[0], face[i - 1], face[i]});
    }
    return fans;
}

// The light that a lit triangle reflects, as a linear function over its plane.
struct Reflection {
    Vec3 gradient;
    double atZero = 0;
    double least = 0;
    double most = 0;

    double At(const Vec3& p) const { return std::clamp(atZero + Dot(gradient, p), least, most); }
};

Reflection ReflectionOf(const RayTriangle& triangle, double a, double b, double c) {
    Reflection reflection{{}, a, std::min({a, b, c}), std::max({a, b, c})};
    const Vec3 normal = FrontOf(triangle);
    const double square = LengthSquared(normal);
    if (square > 0) {
        const Vec3 alongB = Cross(triangle[2] - triangle[0], normal) * (b - a);
        const Vec3 alongC = Cross(normal, triangle[1] - triangle[0]) * (c - a);
        reflection.gradient = (alongB + alongC) * (1 / square);
        reflection.atZero = a - Dot(reflection.gradient, triangle[0]);
    }
    return reflection;
}

// A triangle that sheds light.
struct Glow {
    RayTriangle triangle;
    double light = 0;
    double reachSquared = 0;  // beyond this distance no ray is sent
};

Vec3 CentreOf(const RayTriangle& triangle) {
    return (triangle[0] + triangle[1] + triangle[2]) * (1.0 / 3);
}

Glow GlowOf(const RayTriangle& triangle, double light) {
    return {triangle, light, light * Length(FrontOf(triangle)) / (2 * PI * LIGHT_MIN)};
}

class Baker {
public:
    Baker(const BakeInput& input, const BakeOptions& options)
        : input_(input), options_(options), receivers_(ReceiverFinder(input).Find()), fans_(FansOf(input)),
          scene_(fans_.surfaces),
          directions_(HemisphereDirections(options.quality == LightQuality::Fast ? RAYS_FAST : RAYS)) {
        for (size_t i = 0; i < fans_.polygons.size(); ++i) {
            const double light = LookOf(i).light;
            if (light > 0) glows_.push_back(GlowOf(fans_.surfaces.solid[i], light));
        }
    }

    BakedLight Bake() {
        light_.resize(receivers_.list.size());
        changing_.assign(input_.changing.size(), light_);
        spots_.resize(light_.size());
        rays_.resize(light_.size());
        if (options_.quality != LightQuality::None) FindLight();
        return Result();
    }

private:
    const SurfaceLook& LookOf(size_t triangle) const {
        return input_.looks[input_.world.polygons[fans_.polygons[triangle]].texture];
    }

    void FindLight() {
        ForAll(light_.size(), options_.threads, [this](size_t i) { light_[i] = Direct(i); });
        LightBuried(light_);
        for (std::vector<double>& light : changing_)
            LightBuried(light);
        FindReflections();
        std::vector<double> indirect(light_.size());
        ForAll(
            light_.size(), options_.threads, [&](size_t i) { indirect[i] = Indirect(i); }, options_.progress);
        for (size_t i = 0; i < light_.size(); ++i)
            light_[i] += indirect[i];
        LightBuried(light_);
        FindPlaces();
    }

    // The light that comes straight from lamps, the sun and shining surfaces.
    double Direct(size_t number) {
        const Receiver& receiver = receivers_.list[number];
        size_t& rays = rays_[number];
        Spots& spots = spots_[number] = SpotsOf(receiver, [&](const Vec3& spot) {
            ++rays;
            return scene_.Trace(spot, receiver.outward).meets == Meets::Back;
        });
        if (spots.near.empty() || receiver.light > 0) return receiver.light * OWN_PART;
        double sum = FromSun(receiver, spots, rays);
        for (const Lamp& lamp : input_.lamps)
            sum += FromLamp(lamp, receiver, spots, rays);
        for (size_t i = 0; i < changing_.size(); ++i)
            changing_[i][number] = FromLamp(input_.changing[i], receiver, spots, rays);
        for (size_t i = 0; i < glows_.size(); ++i) {
            const Vec3& spot = spots.near[i % spots.near.size()];
            if (LengthSquared(CentreOf(glows_[i].triangle) - spot) < glows_[i].reachSquared)
                sum += FromGlow(glows_[i].triangle, glows_[i].light, spot, receiver.outward, rays);
        }
        return sum;
    }

    double FromSun(const Receiver& receiver, const Spots& spots, size_t& rays) const {
        const Surroundings& around = input_.surroundings;
        const double sun = around.sun * Dot(around.toSun, receiver.outward);
        if (sun < LIGHT_MIN) return 0;
        double passed = 0;
        for (const Vec3& spot : spots.all) {
            const RayHit hit = scene_.Trace(spot, around.toSun);
            if (hit.meets == Meets::Sky) passed += hit.passed;
        }
        rays += spots.all.size();
        return sun * passed / static_cast<double>(spots.all.size());
    }

    // The light falls linearly with the distance and with the cosine of the angle.
    double FromLamp(const Lamp& lamp, const Receiver& receiver, const Spots& spots, size_t& rays) const {
        const Vec3 way = lamp.position - (receiver.position + receiver.outward * SPOT_HEIGHT);
        const double distanceSquared = LengthSquared(way);
        if (distanceSquared >= lamp.radius * lamp.radius) return 0;
        const double distance = std::sqrt(distanceSquared);
        const double cosine = distance > 0 ? Dot(way, receiver.outward) / distance : 1;
        const double light = lamp.brightness * (1 - distance / lamp.radius) * cosine;
        if (cosine <= 0 || std::abs(light) < LIGHT_MIN) return 0;
        double passed = 0;
        for (const Vec3& spot : spots.all)
            passed += scene_.Passed(spot, lamp.position);
        rays += spots.all.size();
        return light * passed / static_cast<double>(spots.all.size());
    }

    double FromGlow(const RayTriangle& triangle, double light, const Vec3& spot, const Vec3& outward,
                    size_t& rays) const {
        const auto& [a, b, c] = triangle;
        const Vec3 front = FrontOf(triangle);
        const Vec3 way = CentreOf(triangle) - spot;
        const bool seen = Dot(front, way) < 0 &&
                          (Dot(a - spot, outward) > 0 || Dot(b - spot, outward) > 0 || Dot(c - spot, outward) > 0);
        if (!seen) return 0;
        const double square = LengthSquared(way);
        const double doubleArea = Length(front);
        const double most = light * doubleArea / (2 * PI * square);
        if (most < LIGHT_MIN) return 0;
        const std::array<double, 3> sides{LengthSquared(b - a), LengthSquared(c - b), LengthSquared(a - c)};
        const size_t longest = static_cast<size_t>(std::max_element(sides.begin(), sides.end()) - sides.begin());
        if (sides[longest] * PATCH_NEAR * PATCH_NEAR > square && sides[longest] > PATCH_SIZE * PATCH_SIZE) {
            const Vec3& from = triangle[longest];
            const Vec3& to = triangle[(longest + 1) % 3];
            const Vec3& other = triangle[(longest + 2) % 3];
            const Vec3 middle = (from + to) * 0.5;
            return FromGlow({from, middle, other}, light, spot, outward, rays) +
                   FromGlow({middle, to, other}, light, spot, outward, rays);
        }
        const double cosines = -Dot(way, outward) * Dot(way, front) / (square * doubleArea);
        if (cosines <= 0 || most * cosines < LIGHT_MIN) return 0;
        ++rays;
        return std::min(most, light) * cosines * scene_.Passed(spot, spot + way);
    }

    double Indirect(size_t number) {
        const Spots& spots = spots_[number];
        if (spots.near.empty() || receivers_.list[number].light > 0) return 0;
        return FromAround(spots.near, receivers_.list[number].outward, rays_[number]);
    }

    // The light that comes from the surroundings, as the spots see them.
    double FromAround(const std::vector<Vec3>& spots, const Vec3& outward, size_t& rays) const {
        const Surroundings& around = input_.surroundings;
        const bool bounces = around.bounce > 0 && options_.quality == LightQuality::Full;
        const bool skyShines = around.sky > 0 && !input_.sky.empty();
        if (around.ambient == 0 && !skyShines && !bounces) return 0;
        const SurfaceFrame frame(outward);
        double open = 0;
        double sky = 0;
        double reflected = 0;
        for (size_t i = 0; i < directions_.size(); ++i) {
            const Vec3& spot = spots[i % spots.size()];
            const Vec3 direction = frame.Turned(directions_[i]);
            const RayHit hit = scene_.Trace(spot, direction);
            if (hit.meets == Meets::Sky) {
                open += hit.passed;
                sky += hit.passed;
            } else if (hit.meets == Meets::Front) {
                open += hit.passed * std::min(1.0, hit.distance / around.ambientDistance);
                if (options_.quality == LightQuality::Full)
                    reflected += hit.passed * reflections_[hit.triangle].At(spot + direction * hit.distance);
            }
        }
        rays += directions_.size();
        return (around.ambient * open + around.sky * sky + around.bounce * reflected) /
               static_cast<double>(directions_.size());
    }

    // A corner none of whose spots sees anything takes the light of the corners beside it.
    void LightBuried(std::vector<double>& light) const {
        std::vector<double> sums(light.size(), 0);
        std::vector<double> counts(light.size(), 0);
        for (const WorldPolygon& polygon : input_.world.polygons) {
            const size_t first = polygon.firstCorner;
            for (size_t i = first; i < first + polygon.cornerCount; ++i) {
                for (size_t k = first; k < first + polygon.cornerCount; ++k) {
                    const size_t to = receivers_.ofCorner[i];
                    const size_t from = receivers_.ofCorner[k];
                    if (to == NONE || !spots_[to].near.empty() || spots_[from].near.empty()) continue;
                    sums[to] += light[from];
                    ++counts[to];
                }
            }
        }
        for (size_t i = 0; i < light.size(); ++i) {
            if (counts[i] > 0) light[i] = sums[i] / counts[i];
        }
    }

    void FindPlaces() {
        std::vector<std::optional<PlaceLight>> places(input_.floors.size());
        std::vector<size_t> rays(places.size());
        ForAll(places.size(), options_.threads, [&](size_t i) { places[i] = AtPlace(input_.floors[i], rays[i]); });
        for (std::optional<PlaceLight>& place : places) {
            if (place) places_.push_back(std::move(*place));
        }
        placeRays_ = std::accumulate(rays.begin(), rays.end(), size_t{0});
    }

    std::optional<PlaceLight> AtPlace(const Vec3& floor, size_t& rays) const {
        PlaceLight light{floor + Vec3{0, PLAYER_MIDDLE, 0}, {}};
        ++rays;
        const bool hasRoom = scene_.Passed(floor + Vec3{0, 1, 0}, light.place) > 0;
        if (!hasRoom) return std::nullopt;
        for (const auto* lamps : {&input_.lamps, &input_.changing}) {
            for (const Lamp& lamp : *lamps)
                light.lamps.push_back(AtPlace(lamp, light.place, rays));
        }
        const RayHit hit = scene_.Trace(light.place, input_.surroundings.toSun);
        if (hit.meets == Meets::Sky) light.sun = input_.surroundings.sun * hit.passed;
        light.above = FromAround({light.place}, {0, 1, 0}, rays);
        for (const Vec3& side : {Vec3{1, 0, 0}, Vec3{-1, 0, 0}, Vec3{0, 0, 1}, Vec3{0, 0, -1}})
            light.around += FromAround({light.place}, side, rays) / 4;
        return light;
    }

    double AtPlace(const Lamp& lamp, const Vec3& place, size_t& rays) const {
        const double distance = Length(lamp.position - place);
        if (distance >= lamp.radius) return 0;
        ++rays;
        return lamp.brightness * (1 - distance / lamp.radius) * scene_.Passed(place, lamp.position);
    }

    void FindReflections() {
        std::vector<double> light = light_;
        for (size_t i = 0; i < light.size(); ++i) {
            for (size_t lamp = 0; lamp < changing_.size(); ++lamp)
                light[i] += changing_[lamp][i] * input_.changing[lamp].mean;
        }
        for (size_t i = 0; i < fans_.polygons.size(); ++i) {
            std::array<double, 3> reflected{};
            for (size_t k = 0; k < 3 && LookOf(i).light == 0; ++k)
                reflected[k] = light[receivers_.ofCorner[fans_.corners[i][k]]] * LookOf(i).reflectance;
            reflections_.push_back(ReflectionOf(fans_.surfaces.solid[i], reflected[0], reflected[1], reflected[2]));
        }
    }

    BakedLight Result() const {
        BakedLight baked{FieldOf(light_), {}, places_, input_.surroundings.toSun, placeRays_};
        for (const std::vector<double>& light : changing_)
            baked.changing.push_back(FieldOf(light));
        baked.rays = std::accumulate(rays_.begin(), rays_.end(), baked.rays);
        return baked;
    }

    LightField FieldOf(const std::vector<double>& light) const {
        const WorldFile& world = input_.world;
        LightField field;
        for (const size_t receiver : receivers_.ofPoint)
            field.points.push_back(receiver == NONE ? 0 : light[receiver]);
        for (size_t i = 0; i < world.polygons.size(); ++i) {
            const WorldPolygon& polygon = world.polygons[i];
            if (polygon.shading != WORLD_CORNER_LIGHT) continue;
            field.corners.resize(i + 1);
            for (size_t k = 0; k < polygon.cornerCount; ++k) {
                const size_t receiver = receivers_.ofCorner[polygon.firstCorner + k];
                if (receiver != NONE) field.corners[i][k] = light[receiver];
            }
        }
        return field;
    }

    const BakeInput& input_;
    const BakeOptions& options_;
    Receivers receivers_;
    Fans fans_;
    RayScene scene_;
    std::vector<Vec3> directions_;
    std::vector<Glow> glows_;
    std::vector<Spots> spots_;
    std::vector<double> light_;
    std::vector<std::vector<double>> changing_;  // for each changing lamp its light on every receiver
    // Rays of each receiver, counted apart so that the threads need not share a counter.
    std::vector<size_t> rays_;
    std::vector<Reflection> reflections_;
    std::vector<PlaceLight> places_;
    size_t placeRays_ = 0;
};

}  // namespace

BakedLight BakeLight(const BakeInput& input, const BakeOptions& options) {
    return Baker(input, options).Bake();
}
