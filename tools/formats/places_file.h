// Where a level's map lies in its world, and the places that the map marks (info_route). mapc writes the file
// places.txt beside the world, the explorer, the gallery and the benches read it; the game does not know it.
//
// Text, '#' starts a comment:
//     map 1 1.5 223 376 -211                                quarter turns, scale, offset: see mapc/placement.h
//     time 240                                              seconds that the route takes at most; 0: not said
//     mark 1 100.5 485 -32 96 270 the gate                  order, x, y, z, reach, heading, name to the line's end
//     mark 0 850 645 12 96 - under the roof                 no order: off the route; '-': no picture
// x, y, z: world units, of a player who stands there. heading: degrees, along (-sin, 0, cos), 0 <= heading < 360.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct MarkedPlace {
    int order = 0;  // on the route from 1, 0 off it
    double x = 0, y = 0, z = 0;
    double reach = 0;               // so near across the floor is there
    std::optional<double> heading = {};  // where a picture of it looks
    std::string name = {};
};

struct PlacesFile {
    int quarterTurns = 0;
    double scale = 1;
    double offset[3] = {0, 0, 0};
    double routeTime = 0;
    std::vector<MarkedPlace> marks;  // the route in its order, then the others
};

PlacesFile ReadPlaces(const std::filesystem::path& path);  // ContentError with file and line
std::string PlacesText(const PlacesFile& places);
