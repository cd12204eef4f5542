// The world of a map, its large faces cut so that the light of their corners shows its shape, and no finer than the
// engine's limits allow.
#pragma once

#include "mapc/hidden_faces.h"
#include "mapc/light.h"
#include "mapc/limits.h"

struct CutWorld {
    WorldFile world;
    std::vector<Count> counts;  // none beyond its limit
    Contacts contacts;
    size_t hidden = 0, hiddenLeftOut = 0;
    std::vector<std::string> notes;  // where the grid became coarser to keep the limits
};

// hidden: left out where they are too many. ContentError when not even the world without any cuts keeps
// the limits; it names what is exceeded and where.
CutWorld CutForLight(const Tree& tree, std::vector<LeafFace> hidden, const LightSources& sources,
                     const BakeOptions& bake);
