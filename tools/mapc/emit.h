// The last step to the world file: engine coordinates, shared points and planes, boxes, drawing and contact order.
#pragma once

#include "mapc/mesh.h"
#include "mapc/placement.h"

// Not checked against any limit: counts beyond 16 bits are kept by the caller's limits, see limits.h, which is asked
// first.
WorldFile EmitWorld(const Tree& tree, const Mesh& mesh, const Brushes& brushes, const Placement& placement);
