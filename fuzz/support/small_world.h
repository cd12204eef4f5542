// A world of one square ahead of the eye, for targets that append to a world or light it.
#pragma once

#include "support/tiny_world.h"

// Sets the world up again, without what an earlier input appended.
inline void PublishSmallWorld() {
    static TinyWorld world;
    if (WorldGeometry.nodes == nullptr) {
        world.AddLeaf({FacingSquare({0, 0, 100}, {0, 0, -1}, 10)});
        world.Publish();
    }
    WorldGeometry.used = WorldGeometry.fixed = WorldGeometry.file;
}
