// Where floors end at walls, they go on behind them, hidden. Whoever creeps into a wall too thin for skirts walks on to
// its other side, and whoever falls past the foot of a wall so fast that he misses it finds ground.
//
//         |   | wall
//     ____|---|____
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/sealing.h"

// faces: of the level, merged. clip: the material to paint the floors with. scale: engine units per map unit.
std::vector<Face> FloorsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale);
