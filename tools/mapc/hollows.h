// Floors in steep hollows. Who falls between two faces that are too steep to land on hangs there in the air for ever:
// he never lands, so he can neither run nor jump. Where a ball of the player's size comes to rest between such faces,
// a small hidden floor lies below it, on which he lands.
//
//      \  o  /
//       \---/    the floor
//        \ /
#pragma once

#include "mapc/hidden_faces.h"

// hidden: the faces of movement alone so far. clip: the material to paint the floors with. scale: engine units per map
// unit.
std::vector<Face> FloorsInHollows(const Tree& tree, const std::vector<LeafFace>& hidden, Brushes& brushes,
                                  const Material& clip, double scale);
