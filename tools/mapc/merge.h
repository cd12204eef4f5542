// Puts faces together that lie in one plane, are painted alike and form a convex face, whatever brushes they come from.
#pragma once

#include "mapc/csg.h"

// Gives the faces new textures (added to brushes), which are placed: see PlaceTexture.
void MergeFaces(std::vector<Face>& faces, Brushes& brushes);
