// From a map from elsewhere to one that mapc takes: the map, its textures.toml, its pictures and its sky.
#pragma once

#include "formats/files.h"
#include "mapconvert/painting.h"
#include "mapconvert/rules.h"

#include <optional>

struct ConvertOptions {
    std::filesystem::path map, rules;
    std::vector<std::filesystem::path> pictures;  // places besides those of the rules and those beside the map
    std::optional<double> scale;                  // engine units for each map unit; else by the rules' door
};

struct ConvertedMap {
    MapFile map;
    Painting painting;
    std::vector<std::string> notes;  // what the author should know, a line each
};

constexpr double DOOR_UNITS = 240;  // engine units that a door for zero is high

// ContentError when the map cannot be read, or has neither start nor brushes.
ConvertedMap ConvertMap(const ConvertOptions& options);
// Without the pictures; for what is in memory.
ConvertedMap ConvertMapText(const std::string& text, const std::string& name, const ForeignRules& rules, double scale,
                            const Pictures& pictures);

// <folder>/<name of the map>.map, textures.toml, materials/*.png and, under a sky, sky.toml.
void WriteConverted(const ConvertedMap& converted, const std::filesystem::path& source,
                    const std::filesystem::path& folder);
