// Ceilings that a jump passes. The game moves a sphere at the player's feet and nothing stops his head, so a jump under
// a low ceiling would lift head, body and camera into the storey above. A hidden slab below the ceiling stops the
// sphere when the head is just below it.
//
//      _______________  ceiling
//       |
//       | SLAB_DROP
//       - - - - - - -   slab
//      _______________  floor
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/jumps.h"

// Both in engine units.
constexpr double HEAD_ROOM = double{STANDING_HEIGHT} + HEAD_HEIGHT;           // least height of a room for its player
constexpr double SLAB_DROP = HEAD_ROOM - 2 * double{MOVE_SPHERE_RADIUS} + 3;  // 3: he may stand that much higher

// faces: of the level, merged. clip: the material to paint the slabs with. scale: engine units per map unit.
std::vector<Face> SlabsBelowCeilings(const std::vector<Face>& faces, Brushes& brushes, const Material& clip,
                                     double scale, int ticks);
