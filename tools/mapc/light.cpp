#include "mapc/light.h"

namespace {

struct Lamp {
    Vec3 position;  // engine space
    double brightness = 0;
    double radius = 0;
};

Vec3 Widened(const WorldVector& v) {
    return {v[0], v[1], v[2]};
}

// Linear in the distance and in the cosine of the angle.
double LightFrom(const Lamp& lamp, const Vec3& p, const Vec3& outward) {
    const Vec3 way = lamp.position - p;
    const double distanceSquared = LengthSquared(way);
    if (distanceSquared >= lamp.radius * lamp.radius) return 0;
    const double distance = std::sqrt(distanceSquared);
    const double cosine = distance > 0 ? Dot(way, outward) / distance : 1;
    return cosine > 0 ? lamp.brightness * (1 - distance / lamp.radius) * cosine : 0;
}

class LightPass {
public:
    LightPass(const LevelSettings& settings, const std::vector<PointLight>& lights, const Placement& placement)
        : ambient_(settings.ambient) {
        for (const PointLight& light : lights) {
            lamps_.push_back({placement.ToEngine(light.origin), light.brightness, light.radius * placement.scale});
        }
    }

    int8_t LightAt(const WorldVector& position, const WorldVector& inward) const {
        const Vec3 p = Widened(position);
        const Vec3 outward = -Widened(inward);
        double sum = ambient_;
        for (const Lamp& lamp : lamps_)
            sum += LightFrom(lamp, p, outward);
        return static_cast<int8_t>(std::clamp(sum, 0.0, 127.0));
    }

private:
    double ambient_;
    std::vector<Lamp> lamps_;
};

void SetLevelValues(const LevelSettings& settings, LightMapFile& file) {
    const auto hundredths = [](double value) { return static_cast<int16_t>(std::floor(value * 100 + 0.5)); };
    file.lightLevel = hundredths(settings.lightLevel);
    file.contrast = hundredths(settings.contrast);
    file.fadeDistance = settings.fadeDistance;
    file.farDistance = settings.farDistance;
    file.lightMode = static_cast<int16_t>(settings.lightMode);
    file.plainBrightening = settings.plainBrightening ? 1 : 0;
    for (size_t i = 0; i < 3; ++i) {
        file.brightColour[i] = static_cast<int16_t>(settings.brightColour[i]);
        file.darkColour[i] = static_cast<int16_t>(settings.darkColour[i]);
    }
}

void LightCorners(const WorldFile& world, const LightPass& pass, LightMapFile& file) {
    for (size_t i = 0; i < world.polygons.size(); ++i) {
        const WorldPolygon& polygon = world.polygons[i];
        if (polygon.shading != WORLD_CORNER_LIGHT) continue;
        file.cornerLight.resize(i + 1);
        for (size_t k = 0; k < polygon.cornerCount; ++k) {
            const WorldCorner& corner = world.corners[polygon.firstCorner + k];
            file.cornerLight[i][k] =
                pass.LightAt(world.points[corner.point].position, world.planes[polygon.plane].normal);
        }
    }
}

}  // namespace

LightMapFile LightWorld(const WorldFile& world, const LevelSettings& settings, const std::vector<PointLight>& lights,
                        const Placement& placement) {
    const LightPass pass(settings, lights, placement);
    LightMapFile file;
    for (const WorldPoint& point : world.points)
        file.pointLight.push_back(pass.LightAt(point.position, point.normal));
    LightCorners(world, pass, file);
    SetLevelValues(settings, file);
    return file;
}
