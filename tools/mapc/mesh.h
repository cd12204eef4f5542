// The drawn surface as polygons over shared vertices. Once the T-junctions are filled, every edge of a solid surface
// has exactly one neighbour running the other way, so nothing shines through between two polygons.
#pragma once

#include "mapc/bsp_tree.h"

constexpr double WELD_DISTANCE = 0.1;  // engine units; nearer corners are one vertex

struct MeshPolygon {
    std::vector<int> corners;  // into Mesh::vertices
    int plane = 0;
    int texture = 0;
    bool hidden = false;
};

struct Mesh {
    std::vector<Vec3> vertices;
    std::vector<std::vector<MeshPolygon>> leaves;  // as in the tree
};

// Both with the engine units per map unit: what is too small for the engine is so at every scale.
Mesh WeldMesh(const Tree& tree, double scale);
// Gives every edge the vertices that lie on it, and drops polygons that have no area left by that: their two sides have
// become each other's neighbours. Hidden polygons are left alone.
void FillTJunctions(Mesh& mesh, double scale);
