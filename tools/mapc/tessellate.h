// Cuts large faces on a grid of the world, so that the light of their corners shows its shape.
#pragma once

#include "mapc/bsp_tree.h"

// grid: map units. scale: engine units per map unit. A wall is cut across its height only where nobody can stand or
// fall by: the player takes the part below such a cut for a step when it ends less than 50 engine units above him.
void TessellateFaces(Tree& tree, const PlaneTable& planes, double grid, double scale);
