// Walls beside ledges. Who runs into the corner of a low ledge and a taller wall is thrown up by the wall's whole
// height when the game meets the ledge first, and stopped by both when it meets the wall first. It goes from leaf to
// leaf, so the order of two faces is certain only within one leaf, where the taller one comes first (mapc/emit.h): each
// ledge's leaf gets hidden copies of the taller walls beside it.
#pragma once

#include "mapc/hidden_faces.h"

// clip: the material to paint them with. scale: engine units per map unit.
std::vector<LeafFace> WallsBesideLedges(const Tree& tree, Brushes& brushes, const Material& clip, double scale);
