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

#include "mapc/sealing.h"

constexpr double SKIRT_LEAN = 0.23;  // horizontal over vertical: too flat to be taken for a ledge

// Leaves out so many skirts near the place, the smallest of those within reach of it. False when there are none.
bool ThinSkirts(std::vector<Face>& skirts, const Vec3& place, double reach, size_t count);

// The skirts of all walls among the faces, which are merged. clip: the material to paint them with. scale: engine units
// per map unit.
std::vector<Face> SkirtsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale);
