// A walk along the route that a map marks: from the start to the first mark, and from each to the next. Between two
// marks it runs straight on, and where that does not lead there, tries other keys from the places it got to.
#pragma once

#include "explorer/search.h"
#include "formats/places_file.h"

struct RouteLeg {
    const MarkedPlace* mark;
    bool reached;
    double seconds;  // since the mark before; of the closest approach when it is not reached
    Vec3 closest;
};

struct RouteReport {
    std::vector<RouteLeg> legs;  // the last is the first that fails, if one does
    double seconds = 0;          // what the whole way takes
    KeyPlay play;
    bool WithinTime(const PlacesFile& places) const;
};

// From where the walker stands. seed: of the keys tried.
RouteReport WalkRoute(Walker& walker, const PlacesFile& places, uint32_t seed);
std::string RouteText(const RouteReport& report, const PlacesFile& places);
