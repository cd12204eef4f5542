// Cuts large faces on a grid of the world, so that the light of their corners shows its shape.
#pragma once

#include "mapc/bsp_tree.h"

// grid: map units. Faces that are walls are not cut across their height: the lower part of such a wall
// would be taken for a step.
void TessellateFaces(Tree& tree, const PlaneTable& planes, double grid);
