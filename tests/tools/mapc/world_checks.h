// Rules that every compiled world keeps. Each check returns what breaks its rule, in words; empty is good.
#pragma once

#include "formats/world_file.h"

#include <string>
#include <vector>

using Findings = std::vector<std::string>;

Findings OpenEdges(const WorldFile& world);                 // edges without a neighbour that runs the other way
Findings TurnedPolygons(const WorldFile& world);            // winding and stored plane disagree, corners off the plane
Findings OrderedLeaves(const WorldFile& world);             // pairs in a leaf that depend on their drawing order
Findings PaintingFaults(const WorldFile& world, int rays);  // rays whose last drawn polygon is not the nearest
Findings MisplacedPolygons(const WorldFile& world);  // leaves' polygons outside the leaf's cell, or boxes too small
double FloorAt(const WorldFile& world, double x, double z);  // greatest height of an upward polygon there; -1e9: none
