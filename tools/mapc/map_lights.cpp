#include "mapc/map_lights.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr double LIGHT_DEFAULT = 100;
constexpr double RADIUS_DEFAULT = 800;
constexpr double FRAMES_MAX = 100000;

struct StyleName {
    const char* name;
    LightStyle style;
    std::vector<const char*> keys;  // keys that it takes besides those that every light takes
};

const std::vector<StyleName>& Styles() {
    static const std::vector<StyleName> styles{
        {"steady", LightStyle::Steady, {}},
        {"ramp", LightStyle::Ramp, {"low", "rise", "fall", "start"}},
        {"blink", LightStyle::Blink, {"low", "high_time", "low_time", "start"}},
        {"flicker", LightStyle::Flicker, {}},
        {"dynamic", LightStyle::Dynamic, {}},
        {"dynamic_ramp", LightStyle::DynamicRamp, {"low", "rise", "fall", "start"}},
    };
    return styles;
}

// Weights of the eye for red, green and blue; the engine's light has no colour.
double BrightnessOf(const Vec3& colour) {
    const double most = std::max({colour.x, colour.y, colour.z}) > 1 ? 255 : 1;
    return (0.299 * colour.x + 0.587 * colour.y + 0.114 * colour.z) / most;
}

const StyleName& StyleOf(const MapEntity& entity) {
    const MapKey* key = entity.Find("style");
    if (!key) return Styles().front();
    std::string known;
    for (const StyleName& style : Styles()) {
        if (key->value == style.name) return style;
        known += fmt::format("{}{}", known.empty() ? "" : ", ", style.name);
    }
    Refuse(key->line, fmt::format("the light has the unknown style \"{}\"", Shown(key->value)), "use " + known);
}

void RefuseIdleKeys(const MapEntity& entity, const StyleName& style) {
    for (const char* name : {"low", "rise", "fall", "high_time", "low_time", "start"}) {
        const bool used = std::any_of(style.keys.begin(), style.keys.end(),
                                      [&](const char* key) { return std::string(key) == name; });
        const MapKey* key = entity.Find(name);
        if (used || !key) continue;
        Refuse(key->line, fmt::format("the key {} means nothing to a light of style {}", name, style.name),
               "leave it out, or change the style");
    }
}

PointLight LightOf(const MapEntity& entity) {
    const std::optional<Vec3> origin = VectorKey(entity, "origin");
    if (!origin) Refuse(entity.line, "a light has no origin", "place it in the map");
    const StyleName& style = StyleOf(entity);
    RefuseIdleKeys(entity, style);
    const auto number = [&](const char* name, double ifMissing, double least, double most) {
        return NumberKeyIn(entity, name, ifMissing, least, most);
    };
    const auto frames = [&](const char* name, int ifMissing, int least) {
        return static_cast<int>(number(name, ifMissing, least, FRAMES_MAX));
    };
    PointLight light{*origin, number("light", LIGHT_DEFAULT, -127, 1000), number("radius", RADIUS_DEFAULT, 1, 100000)};
    light.style = style.style;
    light.low = number("low", light.low, 0, 1);
    light.rise = frames("rise", light.rise, 1);
    light.fall = frames("fall", light.fall, 1);
    light.highTime = frames("high_time", light.highTime, 1);
    light.lowTime = frames("low_time", light.lowTime, 1);
    light.start = frames("start", light.start, 0);
    light.line = entity.line;
    if (const std::optional<Vec3> colour = VectorKey(entity, "_color")) light.brightness *= BrightnessOf(*colour);
    if (light.style != LightStyle::Steady && light.brightness <= 0) {
        Refuse(entity.line, fmt::format("a light of style {} does not shine", style.name),
               "give it a \"light\" above 0");
    }
    return light;
}

}  // namespace

std::vector<PointLight> ReadLights(const MapFile& map, FaultList* faults) {
    std::vector<PointLight> lights;
    for (const MapEntity& entity : map.entities) {
        if (entity.ClassName() != "light") continue;
        Collect(faults, entity.line.number, [&] { lights.push_back(LightOf(entity)); });
    }
    return lights;
}

double MeanOf(const PointLight& light) {
    if (light.style == LightStyle::Ramp) return (1 + light.low) / 2;
    if (light.style == LightStyle::Blink)
        return (light.highTime + light.low * light.lowTime) / static_cast<double>(light.highTime + light.lowTime);
    return 1;
}
