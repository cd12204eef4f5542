// Polygons are drawn as fans of triangles around their first corner, and have few corners.
#pragma once

#include "mapc/mesh.h"

#include <functional>

// Splits polygons of more corners than allowed along diagonals, and lets each polygon begin with the corner whose fan
// has the largest smallest triangle.
void MakeFans(Mesh& mesh, const PlaneTable& planes, const std::function<size_t(const MeshPolygon&)>& cornersMax);
