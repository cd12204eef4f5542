// A player on a world of a few polygons, moved by the game's own states, drives and collision, without a mesh.
#pragma once

#include "support/tiny_world.h"

#include "character/character_tables.h"
#include "player/player.h"

#include <cstdint>
#include <vector>

constexpr float FEET_BELOW_POSITION = 109.0f;  // sphere lowering 93 + radius 16

class Walker {
public:
    // A world of one leaf, contacts in the order of its polygons. Every animation is 100 long, take-offs 60. The
    // player has settled.
    Walker(const std::vector<Corners>& polygons, uint32_t frameTicks, Vec3 position);

    void Frame(uint16_t controls);
    void Frames(int count, uint16_t controls);
    // Stops all movement and lets the player settle.
    void Settle() { Frames(200, 0); }

private:
    TinyWorld world_;
};

using Polygons = std::vector<Corners>;

// A horizontal square of side 2 x half around (x, z), seen from above.
Corners Floor(float x, float z, float half, float height);
// A vertical rectangle from x0 to x1, facing -z (towards a player who walks to +z).
Corners WallAcross(float x0, float x1, float z, float bottom, float top);
