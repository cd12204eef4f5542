// How thick walls are: hidden faces inside a wall (skirts, floors) must not stick out of it.
#pragma once

#include "mapc/sealing.h"
#include "mapc/solid_brushes.h"

class WallDepth {
public:
    // scale: engine units per map unit. All three must outlive the object.
    WallDepth(const Brushes& brushes, const SealedSpace& space, double scale);

    bool IsOpen(const Vec3& p) const;  // whether the player can be there
    // From a place on a wall, how far it is along `back`, of length 1, to where the player can be again, in steps of 8
    // engine units; at most `most`, in map units like all lengths here.
    double At(const Vec3& place, const Vec3& back, double most) const;

private:
    const SealedSpace& space_;
    double step_;
    SolidBrushes solids_;
};

// Where the thickness along an edge is measured: the middles of pieces no longer than 48 engine units.
std::vector<Vec3> SamplesAlong(const Vec3& from, const Vec3& to, double scale);
