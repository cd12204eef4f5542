// The last step to the world file: engine coordinates, shared points and planes, boxes, drawing and contact order.
#pragma once

#include "mapc/mesh.h"
#include "mapc/placement.h"

// Checks no limit: the caller must have checked the counts (limits.h), which keeps them within 16 bits.
WorldFile EmitWorld(const Tree& tree, const Mesh& mesh, const Brushes& brushes, const Placement& placement);
