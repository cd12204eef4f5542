// Fewer triangles for a grid of heights: large ones where the ground is nearly even.
#pragma once

#include <array>
#include <functional>
#include <vector>

struct GridPoint {
    int x = 0, y = 0;
};

// Corners counter-clockwise where y grows upward.
using GridTriangle = std::array<GridPoint, 3>;

// Lines of the grid, one in so many cells, that no triangle crosses: the drawing tree divides the ground along them.
constexpr int GRID_BLOCK = 8;

// A surface over the grid, width x height points, without gaps: triangles meet along whole sides. Of every grid point
// it misses the height by tolerance at most, and by nothing where the height is 0 or the surface is: even ground around
// a hill keeps its outline. A tolerance of 0 gives two triangles a cell.
//
// Points are dropped one by one, the one that changes the surface least first, each onto a point beside it (half-edge
// collapses, as in L. Kobbelt et al., A General Framework for Mesh Decimation, 1998).
std::vector<GridTriangle> SimplifyGrid(int width, int height, const std::function<double(int x, int y)>& heightAt,
                                       double tolerance);
