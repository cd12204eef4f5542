// The light of a level: what each point and lit corner receives, the level's light settings, and its light slots.
#pragma once

#include "formats/light_files.h"
#include "formats/material_list.h"
#include "mapc/bake.h"
#include "mapc/level_settings.h"
#include "mapc/map_lights.h"
#include "mapc/placement.h"

struct LightSources {
    const std::string& mapName;  // in messages
    const LevelSettings& settings;
    const std::vector<PointLight>& lights;
    const Brushes& brushes;  // their sky faces
    const std::vector<Material>& materials;
    const Placement& placement;
};

// A fault for each light inside a brush: it would light nothing.
void CheckLights(const Brushes& brushes, const std::vector<PointLight>& lights, FaultList& faults);

struct LitWorld {
    LightMapFile file;
    LightSlotFile slots;
    size_t rays = 0;
};
// ContentError when the lights go beyond what light slots can hold.
LitWorld LightWorld(const WorldFile& world, const LightSources& sources, const BakeOptions& options);

// A quick bake of the light of points with every lamp at its brightest: where it bends, faces need corners.
std::vector<int8_t> BrightestLight(const WorldFile& world, const LightSources& sources, int threads);
