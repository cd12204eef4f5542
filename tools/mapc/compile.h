// The compiler as a whole: from a map to the three files of a level.
#pragma once

#include "formats/error.h"
#include "formats/light_files.h"
#include "formats/material_list.h"
#include "formats/places_file.h"
#include "mapc/bake.h"
#include "mapc/limits.h"
#include "mapc/map_file.h"

#include <filesystem>

// A way from info_player_start to the outside through each hole, in map space.
using LeakPaths = std::vector<std::vector<Vec3>>;

struct CompiledLevel {
    WorldFile world;
    LightMapFile light;
    LightSlotFile slots;
    Placement placement;
    PlacesFile places;
    std::vector<Count> counts;
    std::vector<std::string> notes;  // what the author should know, a line each
    Contacts contacts;
    LeakPaths leaks;  // empty: the level is sealed
    size_t hidden = 0, hiddenLeftOut = 0;
    size_t rays = 0;          // rays traced for the light
    double lightSeconds = 0;  // time that the light took
};

// A level that is not sealed.
class LeakError : public ContentError {
public:
    LeakError(const std::string& text, LeakPaths leakPaths) : ContentError(text), paths(std::move(leakPaths)) {}
    LeakPaths paths;
};

// takeLeaks: a level that leaks is compiled with all that can be seen from outside, too, for a quick look.
// level: 1..8, or 0 to leave the map where it is. ContentError (LeakError) when the map cannot become a level.
CompiledLevel CompileMap(const MapFile& map, const MaterialList& list, int level, const BakeOptions& bake = {},
                         bool takeLeaks = false);

struct CompileFiles {
    std::filesystem::path map;
    std::filesystem::path materials;
    std::filesystem::path output;  // folder
    int level = 0;
    BakeOptions bake{};
    bool takeLeaks = false;
    std::filesystem::path prefabs{};  // folder, or empty
    // Asked before anything is written; throws ContentError for what must not be, and returns notes for the report.
    std::function<std::vector<std::string>(const CompiledLevel&, const CompileFiles&, const MaterialList&)> check{};
    std::filesystem::path depfile{};  // written with the maps that the level was made of; empty: none
};

// Writes <output>/<name>.bgm, lights.lmp, lights.alt and places.txt and returns a report for the user. name: the
// level's world name, or the map's own without a level. On failure nothing is written there. The ways out of a level
// that leaks go beside the map, <map>.pts, where map editors look for them: one line from the start along each way and
// back. The next level that is sealed removes that file.
std::string CompileToFiles(const CompileFiles& files);
