// Where a level's map lies in its world, and the places that the map marks (info_route). mapc writes the file
// places.txt beside the world, the explorer, the gallery and the benches read it; the game does not know it.
//
// Text, '#' starts a comment:
//     map 1 1.5 223 376 -211                                quarter turns, scale, offset: see MapFrame
//     time 240                                              seconds that the route takes at most; 0: not said
//     net -330                                              height of the hidden ground below everything
//     mark 1 100.5 485 -32 96 270 the gate                  order, x, y, z, reach, heading, name to the line's end
//     mark 0 850 645 12 96 - under the roof                 no order: off the route; '-': no picture
// x, y, z: world units, of a player who stands there. heading: degrees, along (-sin, 0, cos), 0 <= heading < 360.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct MarkedPlace {
    int order = 0;  // on the route from 1, 0 off it
    double x = 0, y = 0, z = 0;
    double reach = 0;                    // so near across the floor is there
    std::optional<double> heading = {};  // where a picture of it looks
    std::string name = {};
};

// From map space (x east, y north, z up) to the engine's (x right, y up, z forward): engine = (x, z, y) * scale +
// offset, after a turn by quarters.
struct MapFrame {
    int quarterTurns = 0;  // about the vertical, counter-clockwise seen from above
    double scale = 1;      // engine units per map unit
    double offset[3] = {0, 0, 0};

    std::array<double, 3> ToMap(const std::array<double, 3>& p) const;  // back from engine space
};

struct PlacesFile {
    MapFrame frame;
    double routeTime = 0;
    std::optional<double> net;
    std::vector<MarkedPlace> marks;  // the route in its order, then the others
};

PlacesFile ReadPlaces(const std::filesystem::path& path);  // ContentError with file and line
std::string PlacesText(const PlacesFile& places);
