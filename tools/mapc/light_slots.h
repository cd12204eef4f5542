// The light slots of a level (lights.alt): lamps that change, with what each adds to points and corners, and slots that
// only light the character. Those are chosen so that over all places of play the character is lit as the place is: the
// engine lets slots shine through walls and lights the character by nothing else.
#pragma once

#include "formats/light_files.h"
#include "mapc/bake.h"
#include "mapc/limits.h"
#include "mapc/map_lights.h"
#include "mapc/placement.h"
#include "records/light_facts.h"

constexpr size_t LEVEL_SLOTS_MAX = LIGHT_SLOT_COUNT - 10;  // the others are left to shots
constexpr double FLICKER_INTENSITY = (FLICKER_BASE + FLICKER_RANGE / 2.0) / FLICKER_SCALE;  // the mean
constexpr double FLICKER_INTENSITY_MAX = (FLICKER_BASE + FLICKER_RANGE) / double{FLICKER_SCALE};

// The lamps of a map by how they are baked, each in map order.
struct LampsByStyle {
    std::vector<PointLight> steady;
    std::vector<PointLight> changing;  // ramp, blink, flicker
    std::vector<PointLight> dynamic;   // both kinds
};
LampsByStyle SortLamps(const std::vector<PointLight>& lights);

// Places on the floors of a world, spread over it.
std::vector<Vec3> FloorsOf(const WorldFile& world);

struct SlotSources {
    const std::string& map;  // the map's name in messages
    const WorldFile& world;
    const LampsByStyle& lamps;  // as they were given to the bake
    const Placement& placement;
    double exposure = 1;
};

// ContentError with the line of the light that goes beyond one of the limits above.
LightSlotFile MakeLightSlots(const BakedLight& baked, const SlotSources& sources);
std::vector<Count> CountSlots(const LightSlotFile& file);
