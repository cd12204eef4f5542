// Rules that every compiled world keeps. Each check returns what breaks its rule, in words; empty is good.
#pragma once

#include "formats/world_file.h"

#include <string>
#include <vector>

using Findings = std::vector<std::string>;

// What datacheck finds: shapes, boxes and cells of leaves, drawing order along random rays, order of contacts.
Findings Faults(const WorldFile& world);
Findings OpenEdges(const WorldFile& world);  // edges without a neighbour that runs the other way
// Walls cut across less than 50 above a floor in front of them: the game takes the lower part for a step.
Findings FalseSteps(const WorldFile& world);
// Greatest height of an upward polygon at x, z that is not above the limit; minus infinity: there is none.
double FloorAt(const WorldFile& world, double x, double z, double limit = 1e5);
