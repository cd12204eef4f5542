// Puts the pieces of brush sides together again where they form a convex face.
#pragma once

#include "mapc/csg.h"

void MergeFaces(std::vector<Face>& faces, const PlaneTable& planes);
