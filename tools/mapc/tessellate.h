// Cuts large faces on a grid of the world, so that the light of their corners shows its shape.
#pragma once

#include "mapc/bsp_tree.h"
#include "mapc/surface_light.h"

#include <functional>

// A wall is cut across its height only where nobody can stand or fall by: the player takes the part below such a cut
// for a step when it ends less than 50 engine units above him.
struct LightGrid {
    double size = 0;   // map units
    double scale = 1;  // engine units per map unit
};

// Cuts on the whole grid. False: that makes more than piecesMax pieces, and the tree is of no more use.
bool TessellateFaces(Tree& tree, const PlaneTable& planes, const LightGrid& grid, size_t piecesMax);

// Cuts only where the corners that are left could not stand in for those of the whole grid: nowhere does the light
// between them differ by more than the face's tolerance, however it is divided into triangles. light: of the world that
// is cut on the whole grid.
void TessellateWhereLightBends(Tree& tree, const PlaneTable& planes, const LightGrid& grid, const SurfaceLight& light,
                               const std::function<double(const Face&)>& tolerance);
