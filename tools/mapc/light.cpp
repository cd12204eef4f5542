#include "mapc/light.h"

#include "formats/error.h"
#include "mapc/light_slots.h"
#include "records/light_facts.h"

#include <fmt/format.h>

namespace {

constexpr size_t SLOT_COUNT = 256;
constexpr double SKY_DEPTH =
    0.5;  // engine units: sky faces lie that deep, so that what is drawn in the same place wins
// Light bytes above the first are pressed together below the second, so that walls beside lamps keep their shape.
constexpr double PRESSED_FROM = 80;
constexpr double LIGHT_MAX = BRIGHTEST_LEVEL;

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

std::vector<Lamp> LampsOf(const std::vector<PointLight>& lights, const Placement& placement) {
    std::vector<Lamp> lamps;
    for (const PointLight& light : lights)
        lamps.push_back(
            {placement.ToEngine(light.origin), light.brightness, light.radius * placement.scale, MeanOf(light)});
    return lamps;
}

// The bake's input, still without lamps.
BakeInput InputOf(const WorldFile& world, const LightSources& sources) {
    const LevelSettings& settings = sources.settings;
    const Placement& placement = sources.placement;
    BakeInput input{world, LooksOf(sources.materials), SkyFaces(sources.brushes, placement), {}, {}};
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

std::vector<int8_t> LightBytes(const std::vector<double>& light, double exposure) {
    std::vector<int8_t> bytes;
    for (const double value : light)
        bytes.push_back(LightByte(value * exposure));
    return bytes;
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

void CheckLights(const Brushes& brushes, const std::vector<PointLight>& lights, FaultList& faults) {
    for (const PointLight& light : lights) {
        for (const Brush& brush : brushes.list) {
            const bool stopsLight = brush.kind == BrushKind::Solid || brush.kind == BrushKind::Detail;
            if (!stopsLight || !brush.Holds(light.origin, brushes.planes, 0)) continue;
            const Vec3& p = light.origin;
            Collect(&faults, light.line.number, [&] {
                Refuse(
                    light.line,
                    fmt::format("the light at ({} {} {}) is inside the brush of {}", p.x, p.y, p.z, brush.line.Text()),
                    "move it into the open");
            });
            break;
        }
    }
}

LitWorld LightWorld(const WorldFile& world, const LightSources& sources, const BakeOptions& options) {
    const LampsByStyle lamps = SortLamps(sources.lights);
    BakeInput input = InputOf(world, sources);
    input.lamps = LampsOf(lamps.steady, sources.placement);
    input.changing = LampsOf(lamps.changing, sources.placement);
    input.floors = FloorsOf(world);
    const BakedLight baked = BakeLight(input, options);
    const double exposure = sources.settings.exposure;
    LitWorld lit;
    lit.rays = baked.rays;
    lit.file.pointLight = LightBytes(baked.steady.points, exposure);
    for (const auto& corners : baked.steady.corners) {
        auto& bytes = lit.file.cornerLight.emplace_back();
        std::transform(corners.begin(), corners.end(), bytes.begin(),
                       [&](double light) { return LightByte(light * exposure); });
    }
    SetLevelValues(sources.settings, lit.file);
    lit.slots = MakeLightSlots(baked, {sources.mapName, world, lamps, sources.placement, exposure});
    return lit;
}

std::vector<int8_t> BrightestLight(const WorldFile& world, const LightSources& sources, int threads) {
    BakeInput input = InputOf(world, sources);
    input.lamps = LampsOf(sources.lights, sources.placement);
    return LightBytes(BakeLight(input, {LightQuality::Fast, threads, {}}).steady.points, sources.settings.exposure);
}
