// Faces that mapc adds to a world for the player's movement alone: painted with clip, so that nobody sees them.
#pragma once

#include "mapc/bsp_tree.h"

Face HiddenFace(Winding winding, Brushes& brushes, const Material& clip);

struct LeafFace {
    Face face;
    size_t leaf;  // of the tree
};

// How a player moves in the level.
struct MoveOptions {
    double scale = 1;  // engine units per map unit
    int ticks = 1;     // length of the frames
};

// Leaves out so many of the faces, the smallest.
void LeaveOutSmallest(std::vector<LeafFace>& faces, size_t count);
// Leaves out so many of the faces near the place, the smallest of those within reach of it. False when there are none.
bool LeaveOutSmallest(std::vector<LeafFace>& faces, const Vec3& place, double reach, size_t count);
