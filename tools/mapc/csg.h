// Makes, from overlapping brushes, the surface of the body that they form together.
#pragma once

#include "mapc/brush.h"

struct Face {
    Winding winding;
    int plane = 0;        // visible from its front
    int texture = -1;     // into Brushes::textures; -1: sky
    bool hidden = false;  // never drawn (clip), so the drawing order does not concern it
    Box box;

    Face() = default;
    Face(Winding corners, int planeId, int textureId, bool isHidden)
        : winding(std::move(corners)), plane(planeId), texture(textureId), hidden(isHidden), box(WindingBox(winding)) {}
};

std::vector<Box> BoxesOf(const std::vector<Face>& faces);
std::vector<Box> BoxesOf(const std::vector<const Face*>& faces);

struct Surface {
    std::vector<Face> sealing;  // the closed surface of the solid brushes alone, sky included
    std::vector<Face> visible;  // what remains of all painted faces where nothing hides them
};

// Faces that are not cut into several pieces by a brush that stands on them, as a table on a floor: the part below the
// table stays. In a tree where faces go behind (mapc/bsp_tree.h), the table is drawn over it.
enum class WholeFaces { None, BelowWhatStandsOnThem };

Surface CutBrushes(const Brushes& brushes, WholeFaces whole = WholeFaces::None);
