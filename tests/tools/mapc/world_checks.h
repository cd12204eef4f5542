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
// Walls cut across less than 50 above a floor in front of them: the game takes the lower part for a step.
Findings FalseSteps(const WorldFile& world);
// Greatest height of an upward polygon at x, z that is not above the limit; -1e9: there is none.
double FloorAt(const WorldFile& world, double x, double z, double limit = 1e5);
