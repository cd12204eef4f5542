// A floor below everything. A player who gets out of the world all the same does not fall for ever: he lands on hidden
// ground a hop below the lowest floor, and gets back in by hopping up through that floor, since floors stop nobody from
// below.
//
//        |       level       |
//   \|   |___________________|   |/   its rim is a wall that nobody runs up, and behind it one that leans outwards,
//    \___________________________/    which nobody can creep through
#pragma once

#include "mapc/hidden_faces.h"

constexpr double NET_DEPTH = 72;  // engine units below the lowest floor: less than any jump is high

// faces: of the level. Empty when it has no floor. The ground is the first of the faces.
std::vector<Face> NetBelow(const std::vector<Face>& faces, Brushes& brushes, const Material& clip, double scale);
