// Whether the list that RenderWorld makes of the loaded world shows it as it is: of two polygons on one line of
// sight the nearer is drawn later, and the nearest of all is drawn at all. Link `painters_order`.
#pragma once

#include "records/vec3.h"

#include <functional>
#include <string>
#include <vector>

struct PaintersOrderReport {
    int crossings = 0;  // polygons met by the rays, so that a caller can tell a pass from rays into the void
    std::vector<std::string> faults;  // one line each, with the eye and the polygon numbers
};

// Casts raysPerEye rays in random directions of a random view from each eye, on WorldGeometry with its node radii.
// Deterministic in the seed. FarDistance must reach as far as the faults of interest. Polygons that cannot be seen,
// such as those of clip walls, have no order.
PaintersOrderReport CheckPaintersOrder(
    const std::vector<Vec3>& eyes, int raysPerEye, unsigned seed,
    const std::function<bool(int polygon)>& canBeSeen = [](int) { return true; });
