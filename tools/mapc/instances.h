// Prefabs: maps that other maps place any number of times with func_instance entities.
#pragma once

#include "mapc/map_file.h"

#include <filesystem>
#include <vector>

constexpr size_t INSTANCE_DEPTH_MAX = 8;  // prefabs within prefabs

struct PlacedMap {
    MapFile map;                               // with the brushes and lights of its prefabs instead of instances
    std::vector<std::filesystem::path> files;  // the map's own and its prefabs', in the order of first use
};

// Reads a map and, for each func_instance in it or in its prefabs, the prefab that its key "file" names: relative to
// the file that the instance stands in, else to the folder prefabs, which may be empty. "origin" (map units) and
// "angles"
// ("0 yaw 0", degrees counter-clockwise from above) place the prefab's own origin; "replaceNN" ("from to") renames a
// texture. A prefab's worldspawn brushes join the map as a func_group; its info_ entities and worldspawn keys stay out.
// ContentError with file and line: a missing prefab, a cycle, too deep a nest, a terrain in a prefab, and more brushes,
// faces or entities than one map may hold.
PlacedMap ReadPlacedMap(const std::filesystem::path& path, const std::filesystem::path& prefabs);
