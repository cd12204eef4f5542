// Makes the entities of a map from elsewhere those that mapc knows: one worldspawn, one func_detail, lamps, one start.
#pragma once

#include "mapc/map_file.h"
#include "mapconvert/rules.h"

struct AdaptedMap {
    MapEntity world;
    std::vector<MapBrush> detail;
    std::vector<MapEntity> lamps;
    std::vector<MapEntity> starts;  // all that may be it, the most wanted first
    bool hasSky = false;
    std::string skyTexture;          // the sky that most faces show
    std::vector<std::string> notes;  // what became of each class and its keys, a line each
};

// Textures of faces are in lower case afterwards; those of no picture are "sky" and "clip", and "" where a face is not
// meant to be seen. Where the sky is a wall or a floor, a clip brush keeps the player from falling through it.
AdaptedMap AdaptEntities(const MapFile& map, const ForeignRules& rules, double scale);
