// Brushes as the compiler works on them: planes from the table, windings, the class of the brush.
#pragma once

#include "mapc/fault_list.h"
#include "mapc/map_file.h"
#include "mapc/plane_table.h"
#include "mapc/texture_axes.h"
#include "mapc/winding.h"

#include <vector>

constexpr size_t BRUSHES_MAX = 65536;  // brushes of the map and of its terrains together

// In order of rank: where faces of two brushes coincide, the brush of lower rank keeps its face, and of equal ranks the
// earlier one in the map.
enum class BrushKind {
    Solid,   // hides what lies inside it and closes the world; liquid and sky are solid too
    Detail,  // hides what lies inside it, but does not close the world (func_detail)
    Cutout,  // seen through: collides, hides nothing
    Clip,    // never drawn: collides, hides nothing
};

struct BrushSide {
    int plane = 0;     // out of the brush
    int texture = -1;  // into Brushes::textures; -1: the face is left out (sky)
    Winding winding;
};

struct Brush {
    BrushKind kind = BrushKind::Solid;
    Box box;
    std::vector<BrushSide> sides;  // the most upright first, so that they cut walls before the others do
    SourceLine line;               // in the map

    bool Holds(const Vec3& p, const PlaneTable& planes, double tolerance) const;
};

struct Brushes {
    std::string file;         // the map, as messages call it
    std::vector<Brush> list;  // all brushes in the order of their rank
    std::vector<FaceTexture> textures;
    PlaneTable planes;
    std::vector<int> terrainLines;  // planes of the grids of terrains
};

std::vector<Box> BoxesOf(const Brushes& brushes);

// The brushes of worldspawn, func_group and func_detail, and those that terrains become. ContentError for a brush
// without volume or open, a texture that is not in the list, an unknown entity with brushes, and more than BRUSHES_MAX.
//
// With faults, a brush that cannot be is left out, and a texture that is not in the list counts as the list's first.
Brushes BuildBrushes(const MapFile& map, const std::vector<Material>& materials, FaultList* faults = nullptr);
