// The polygons of the world file as drawing reads them: in the order of drawing, and four numbers at once.
#pragma once

#include "math/lanes.h"

#include <cstdint>
#include <vector>

// Four corners of a polygon. Where it has fewer left, its first corner stands in the other lanes.
struct CornerGroup {
    Float4 x, y, z;
};

struct PolygonLanesTable {
    std::vector<float> nx, ny, nz, d;       // by polygon: its plane. Three more entries behind the last one
    std::vector<uint32_t> firstGroup;       // by polygon: index of its first four corners
    std::vector<CornerGroup> cornerGroups;  // positions in the world
};
extern PolygonLanesTable PolygonLanes;

// Fills PolygonLanes from the planes and points of the world file that is loaded. Called by GenerateNodeRadii.
void GeneratePolygonLanes();
