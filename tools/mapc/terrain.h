// Terrain (func_terrain): a height image laid over a box, cut into upright prisms of three sides. They are brushes like
// any others, so they join what stands in them or beside them without a gap.
#pragma once

#include "mapc/map_file.h"

struct Terrain {
    std::vector<MapBrush> prisms;       // the faces on top are smooth
    std::vector<double> columns, rows;  // x and y of lines that no prism crosses, rising
};

// Keys: `image`, beside the map; `tolerance` (0 map units) by which the ground may miss it to have fewer triangles;
// `steep` and `steep_from` (35 degrees), `high` and `high_from` (map units above the box's bottom): textures that take
// the place of the box's top on such ground. The image's upper border is north. White is the top of the box, black its
// bottom; ground that is all black is left out.
Terrain BuildTerrain(const MapFile& map, const MapEntity& entity);
