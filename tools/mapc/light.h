// The static light of a level: what each point and lit corner receives from the lamps, and the level's light settings.
#pragma once

#include "formats/light_files.h"
#include "mapc/placement.h"
#include "mapc/settings.h"

LightMapFile LightWorld(const WorldFile& world, const LevelSettings& settings, const std::vector<PointLight>& lights,
                        const Placement& placement);
