// The materials of an adapted map: a picture for each texture that its faces name, of a size that textures have, no
// more than a level has room for.
#pragma once

#include "mapc/map_file.h"
#include "mapconvert/pictures.h"

struct Painting {
    std::map<std::string, Image> pictures;  // pictures by the names of their materials
    std::string sky;                        // the material that the sky shows, or empty
};

// Renames the textures of all faces, and changes their scales by as much as their pictures change. area: map units that
// each texture covers; the least seen make room first. sky: the texture of the sky, or empty for a map without one.
Painting PaintMap(MapFile& map, const std::map<std::string, double>& area, const std::string& sky,
                  const Pictures& pictures, std::vector<std::string>& notes);
