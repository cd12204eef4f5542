#include "mapc/level_settings.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace {

void ReadColour(const MapEntity& entity, const char* name, std::array<int, 3>& colour) {
    const std::optional<Vec3> vector = VectorKey(entity, name);
    if (!vector) return;
    for (int channel = 0; channel < 3; ++channel) {
        const double value = (*vector)[channel];
        if (value < 0 || value > 63) {
            Refuse(entity.Find(name)->line, fmt::format("the colour {} has a channel of {}", name, value),
                   "use 0 to 63");
        }
        colour[static_cast<size_t>(channel)] = static_cast<int>(value);
    }
}

void ReadDarkColour(const MapEntity& world, const std::optional<std::array<int, 3>>& ofMaterials,
                    std::array<int, 3>& colour) {
    colour = ofMaterials.value_or(colour);
    ReadColour(world, "dark_color", colour);
    if (!ofMaterials || colour == *ofMaterials) return;
    Refuse(world.Find("dark_color")->line,
           fmt::format("dark_color is {} {} {}, but the level's textures are made for {} {} {}", colour[0], colour[1],
                       colour[2], (*ofMaterials)[0], (*ofMaterials)[1], (*ofMaterials)[2]),
           "leave the key out, or change the dark colour of the textures");
}

constexpr std::pair<const char*, bool Guards::*> GUARDS[] = {
    {"net", &Guards::net},         {"floors", &Guards::floors}, {"walls", &Guards::walls},
    {"hollows", &Guards::hollows}, {"lids", &Guards::lids},     {"ceilings", &Guards::ceilings}};

Guards ReadGuards(const MapEntity& world) {
    Guards guards;
    const MapKey* key = world.Find("guards");
    std::istringstream names(key ? key->value : "");
    for (std::string name; names >> name;) {
        const auto* found =
            std::find_if(std::begin(GUARDS), std::end(GUARDS), [&](const auto& guard) { return name == guard.first; });
        if (found == std::end(GUARDS))
            Refuse(key->line, "there are no guards " + Shown(name),
                   "use net, floors, walls, hollows, lids and ceilings, with blanks between");
        guards.*found->second = true;
    }
    return guards;
}

struct EntityClass {
    std::string name;
    std::vector<std::string> keys;
};

const std::vector<EntityClass> ENTITY_CLASSES{
    {"worldspawn",
     {"scale",
      "subdivide",
      "light_tolerance",
      "light_level",
      "contrast",
      "fade_distance",
      "far_distance",
      "light_mode",
      "plain_brightening",
      "bright_color",
      "dark_color",
      "ambient",
      "ambient_distance",
      "sun",
      "sun_direction",
      "sky_light",
      "bounce",
      "exposure",
      "route_time",
      "sky",
      "ticks",
      "track",
      "skirts",
      "guards",
      "faces_behind",
      "mapversion",
      "message",
      "wad"}},  // sky, ticks and track are for ./play --map; the last three are written by editors
    {"func_group", {"corner_light"}},
    {"func_detail", {"corner_light"}},
    {"func_terrain", {"image", "tolerance", "steep", "steep_from", "high", "high_from"}},
    {"info_footing", {"origin"}},
    {"info_lid", {"origin"}},
    {"info_skirt", {"origin"}},
    {"info_route", {"origin", "order", "angle", "reach", "name"}},
    {"func_instance", {"file", "origin", "angles"}},  // and replace...
    {"light", {"origin", "light", "radius", "style", "low", "rise", "fall", "high_time", "low_time", "start"}},
};

// Refuses unknown keys, since a misspelt one would go unnoticed. Editors begin their own keys with an underscore, and
// lights have a _color.
void CheckKeys(const MapEntity& entity, const std::vector<std::string>& known, FaultList* faults) {
    for (const MapKey& key : entity.keys) {
        if (key.name == "classname" || key.name.starts_with('_')) continue;
        if (entity.ClassName() == "func_instance" && key.name.starts_with("replace")) continue;
        if (std::find(known.begin(), known.end(), key.name) != known.end()) continue;
        Collect(faults, key.line.number, [&] {
            Refuse(key.line, fmt::format("unknown key {} of a {}", Shown(key.name), entity.ClassName()),
                   fmt::format("correct its name, or leave it out; known are {}", fmt::join(known, ", ")));
        });
    }
}

}  // namespace

LevelSettings ReadSettings(const MapFile& map, const std::optional<std::array<int, 3>>& dark) {
    LevelSettings settings;
    if (map.entities.empty() || map.entities[0].ClassName() != "worldspawn") {
        Refuse(map.name, 0, "the first entity is not worldspawn", "save the map again");
    }
    const MapEntity& world = map.entities[0];
    const auto number = [&](const char* name, double ifMissing, double least, double most) {
        return NumberKeyIn(world, name, ifMissing, least, most);
    };
    settings.scale = number("scale", settings.scale, 0.01, 100);
    settings.subdivide = number("subdivide", settings.subdivide, 0, 8192);
    if (settings.subdivide > 0 && settings.subdivide < 128) {
        Refuse(world.Find("subdivide")->line, fmt::format("the key subdivide is {}", settings.subdivide),
               "use 0, or 128 and more: finer surfaces overflow the engine's contact list");
    }
    settings.lightTolerance = number("light_tolerance", settings.lightTolerance, 0, 127);
    settings.lightLevel = number("light_level", settings.lightLevel, 0, 2);
    settings.contrast = number("contrast", settings.contrast, 0, 10);
    settings.ambient = number("ambient", settings.ambient, 0, 127);
    settings.ambientDistance = number("ambient_distance", settings.ambientDistance, 1, 100000);
    settings.sun = number("sun", settings.sun, 0, 1000);
    settings.sunDirection = VectorKey(world, "sun_direction").value_or(settings.sunDirection);
    if (LengthSquared(settings.sunDirection) == 0) {
        Refuse(world.Find("sun_direction")->line, "the sun shines in no direction", "use 0 0 -1 for noon");
    }
    settings.skyLight = number("sky_light", settings.skyLight, 0, 1000);
    settings.bounce = number("bounce", settings.bounce, 0, 10);
    settings.exposure = number("exposure", settings.exposure, 0, 10);
    settings.fadeDistance = static_cast<int>(number("fade_distance", settings.fadeDistance, 1, 1e6));
    settings.farDistance = static_cast<int>(number("far_distance", settings.farDistance, 1, 1e6));
    settings.lightMode = static_cast<int>(number("light_mode", 0, 0, 3));
    settings.skirts = number("skirts", 1, 0, 1) != 0;
    settings.facesBehind = static_cast<FacesBehind>(number("faces_behind", 0, 0, 3));
    settings.guards = ReadGuards(world);
    settings.plainBrightening = number("plain_brightening", 0, 0, 1) != 0;
    ReadColour(world, "bright_color", settings.brightColour);
    ReadDarkColour(world, dark, settings.darkColour);
    return settings;
}

void CheckEntities(const MapFile& map, FaultList* faults) {
    for (const MapEntity& entity : map.entities) {
        const std::string name = entity.ClassName();
        const auto known = std::find_if(ENTITY_CLASSES.begin(), ENTITY_CLASSES.end(),
                                        [&](const EntityClass& entityClass) { return entityClass.name == name; });
        if (known == ENTITY_CLASSES.end()) {
            if (name.starts_with("info_")) continue;
            Collect(faults, entity.line.number, [&] {
                Refuse(entity.line, name.empty() ? "an entity without a classname" : "unknown entity " + Shown(name),
                       "use worldspawn, func_group, func_detail, func_terrain, func_instance, light and info_*");
            });
            continue;
        }
        CheckKeys(entity, known->keys, faults);
    }
}
