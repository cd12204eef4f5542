// Leaning faces behind walls. Keys held press a player so lightly against a wall that the game does not stop him: he
// creeps through it, and falls out of the world. A face that leans away from him stops him, because his fall presses
// him into it. So behind each wall that is thick enough to get lost in stand hidden faces (skirts), 8 units inside at
// their lower edge and leaning by SKIRT_LEAN; who does not creep never meets them.
//
//      room | wall
//           |      /   as high as the wall is thick enough for, then the next one
//           |    /
//           |  /
//      -----+ - - -
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/sealing.h"

constexpr double SKIRT_LEAN = 0.23;  // horizontal over vertical: too flat to be taken for a ledge

// The skirts of all walls among the faces, which are merged. clip: the material to paint them with. scale: engine units
// per map unit. stayApart: whether the skirts on both sides of a wall leave a gap between them, so that nobody is
// caught between the back of one and the front of the other; thinner walls then go without.
std::vector<Face> SkirtsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale, bool stayApart);

// The skirts of the walls at places of the player's, and of no more of them than is near.
std::vector<Face> SkirtsAtPoints(const std::vector<Vec3>& players, const std::vector<Face>& faces, Brushes& brushes,
                                 const SealedSpace& space, const Material& clip, double scale);
