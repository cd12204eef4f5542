// Lids over the corners of ledges. Who touches a low ledge and something else that is upright in one move is thrown up
// by the height of the other thing, or twice by that of the ledge. A small hidden ceiling over such a corner stops him
// in that move, so that he stays where he is. It hangs so high that a step onto the ledge passes below it, and so low
// that the game still sees it.
//
//            |  wall
//       ---  |  the lid
//            |
//      ______|  ledge
//     |
#pragma once

#include "mapc/hidden_faces.h"

// hidden: the faces of movement alone so far. clip: the material to paint the lids with.
std::vector<Face> LidsOverLedges(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes,
                                 const Material& clip, const MoveOptions& options);
