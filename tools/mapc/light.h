// The static light of a level: what each point and lit corner receives, and the level's light settings.
#pragma once

#include "formats/light_files.h"
#include "formats/material_list.h"
#include "mapc/bake.h"
#include "mapc/placement.h"
#include "mapc/settings.h"

struct LightSources {
    const LevelSettings& settings;
    const std::vector<PointLight>& lights;
    const Brushes& brushes;  // their sky faces
    const std::vector<Material>& materials;
    const Placement& placement;
};

// ContentError for a light inside a brush: it would light nothing.
void CheckLights(const MapFile& map, const Brushes& brushes, const std::vector<PointLight>& lights);

struct LitWorld {
    LightMapFile file;
    size_t rays = 0;
};
LitWorld LightWorld(const WorldFile& world, const LightSources& sources, const BakeOptions& options);
