// The places that a map marks: its info_route entities.
#pragma once

#include "formats/places_file.h"
#include "mapc/placement.h"

// ContentError for a mark without an origin or a floor below it, with a key out of its range, and for orders that are
// not 1, 2, 3 and so on, each once.
PlacesFile PlacesOf(const MapFile& map, const Brushes& brushes, const Placement& placement);
