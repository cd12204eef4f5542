// Where floors end at walls, they go on behind them, hidden. Whoever creeps into a wall too thin for skirts walks on to
// its other side, and whoever falls past the foot of a wall so fast that he misses it finds ground. They keep clear of
// other ways: the game takes a floor for larger by the player's radius, and he would be caught on it.
//
//         |   | wall
//     ____|---|____
// And where things stand on floors, the floors go on below them, hidden: whoever gets into a statue or a crate comes
// down on what it stands on.
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/sealing.h"

// faces: of the level, merged. clip: the material to paint the floors with. scale: engine units per map unit.
std::vector<Face> FloorsBehind(const std::vector<Face>& faces, Brushes& brushes, const SealedSpace& space,
                               const Material& clip, double scale);
std::vector<Face> FloorsBelowThings(const std::vector<Face>& faces, Brushes& brushes, const Material& clip,
                                    double scale);
