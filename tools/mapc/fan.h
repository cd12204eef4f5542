// Polygons are drawn as fans of triangles around their first corner, and have few corners.
#pragma once

#include "mapc/mesh.h"

#include <functional>

// Engine units by which a corner may lie beyond the line of an edge of its polygon, `reach` away
// from the edge's beginning. The game takes a place for inside when it is inside of all edges: beside a short edge that
// welding has turned, a whole floor would be outside. That the file's numbers are rounded turns short edges a little,
// too.
inline double BulgeAllowed(double reach, double edge) {
    constexpr double BULGE_MAX = 0.25, ROUNDING = 0.002;
    return BULGE_MAX + ROUNDING * reach / edge;
}

// Splits polygons of more corners than allowed, and those that are not convex, along diagonals, and lets each polygon
// begin with the corner whose fan has the largest smallest triangle. scale: engine units per map unit.
void MakeFans(Mesh& mesh, const PlaneTable& planes, double scale,
              const std::function<size_t(const MeshPolygon&)>& cornersMax);
