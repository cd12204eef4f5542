#include "mapc/light.h"

#include "formats/error.h"

#include <fmt/format.h>

namespace {

constexpr size_t SLOT_COUNT = 256;
constexpr double SKY_DEPTH =
    0.5;  // engine units: sky faces lie that deep, so that what is drawn in the same place wins
// Light bytes above the first are pressed together below the second, so that walls beside lamps keep their shape.
constexpr double PRESSED_FROM = 80;
constexpr double LIGHT_MAX = 127;

double Luminance(const Material& material) {
    return (0.299 * material.colour.r + 0.587 * material.colour.g + 0.114 * material.colour.b) / 255;
}

std::vector<SurfaceLook> LooksOf(const std::vector<Material>& materials) {
    std::vector<SurfaceLook> looks(SLOT_COUNT);
    for (const Material& material : materials) {
        if (material.slot >= static_cast<int>(SLOT_COUNT)) continue;
        const bool drawn = !(material.flags & (MATERIAL_CLIP | MATERIAL_SKY));
        looks[static_cast<size_t>(material.slot)] = {drawn, Luminance(material), material.cover / 100.0,
                                                     static_cast<double>(material.light)};
    }
    return looks;
}

std::vector<Winding> SkyFaces(const Brushes& brushes, const Placement& placement) {
    std::vector<Winding> faces;
    for (const Brush& brush : brushes.list) {
        if (brush.kind != BrushKind::Solid) continue;
        for (const BrushSide& side : brush.sides) {
            if (side.texture >= 0) continue;
            const Vec3 inward = placement.Turned(-brushes.planes[side.plane].normal);
            Winding& face = faces.emplace_back();
            for (const Vec3& p : side.winding)
                face.push_back(placement.ToEngine(p) + inward * SKY_DEPTH);
        }
    }
    return faces;
}

BakeInput InputOf(const WorldFile& world, const LightSources& sources) {
    const LevelSettings& settings = sources.settings;
    const Placement& placement = sources.placement;
    BakeInput input{world, LooksOf(sources.materials), SkyFaces(sources.brushes, placement), {}, {}};
    for (const PointLight& light : sources.lights) {
        input.lamps.push_back({placement.ToEngine(light.origin), light.brightness, light.radius * placement.scale});
    }
    const Vec3 toSun = placement.Turned(-settings.sunDirection);
    input.surroundings = {toSun * (1 / Length(toSun)), settings.sun,   settings.skyLight, settings.ambient,
                          settings.ambientDistance,    settings.bounce};
    return input;
}

int8_t LightByte(double light) {
    constexpr double ROOM = LIGHT_MAX - PRESSED_FROM;
    const double above = light - PRESSED_FROM;
    const double pressed = above > 0 ? PRESSED_FROM + ROOM * above / (ROOM + above) : light;
    return static_cast<int8_t>(std::clamp(std::floor(pressed + 0.5), 0.0, LIGHT_MAX));
}

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

}  // namespace

void CheckLights(const MapFile& map, const Brushes& brushes, const std::vector<PointLight>& lights) {
    std::string buried;
    for (const PointLight& light : lights) {
        for (const Brush& brush : brushes.list) {
            const bool stopsLight = brush.kind == BrushKind::Solid || brush.kind == BrushKind::Detail;
            if (!stopsLight || !brush.Holds(light.origin, brushes.planes, 0)) continue;
            const Vec3& p = light.origin;
            buried += fmt::format("{}{}:{}: the light at ({} {} {}) is inside the brush of line {}",
                                  buried.empty() ? "" : "\n", map.name, light.line, p.x, p.y, p.z, brush.line);
            break;
        }
    }
    if (!buried.empty()) throw ContentError(buried + ": move it into the open");
}

LitWorld LightWorld(const WorldFile& world, const LightSources& sources, const BakeOptions& options) {
    const BakedLight baked = BakeLight(InputOf(world, sources), options);
    const double exposure = sources.settings.exposure;
    LitWorld lit;
    lit.rays = baked.rays;
    for (const double light : baked.points)
        lit.file.pointLight.push_back(LightByte(light * exposure));
    for (const auto& corners : baked.corners) {
        auto& bytes = lit.file.cornerLight.emplace_back();
        std::transform(corners.begin(), corners.end(), bytes.begin(),
                       [&](double light) { return LightByte(light * exposure); });
    }
    SetLevelValues(sources.settings, lit.file);
    return lit;
}
