// How a character meets the world. The game takes these numbers from here, and so do the tools that lay a world out for
// them or check it. Data only. Distances in world units; slopes: vertical part of a polygon's normal, 0 to 1.
#pragma once

// A sphere moves through the world in the character's place.
constexpr int MOVE_SPHERE_RADIUS = 16;
constexpr float SPHERE_LOWERING = 93.0f;  // the sphere's centre lies this far below the actor's position
// Height of the actor's position above a level floor on which it stands.
constexpr float STANDING_HEIGHT = SPHERE_LOWERING + MOVE_SPHERE_RADIUS;

// One move slides along at most so many polygons, one after the other.
constexpr int MOVE_PASSES_MAX = 11;

// A polygon stops a move only when the move comes nearer to it by at least this.
constexpr float LEAST_MOVE = 0.1f;

// The polygons that one move may touch lie within half its length and this margin.
constexpr float GATHER_MARGIN = 144.0f;
constexpr int CONTACTS_MAX = 200;  // more of them end the program

// A polygon flatter than STEEP_SLOPE is a floor or a ceiling, any other a wall or the riser of a step.
constexpr float STEEP_SLOPE = 0.2f;
// Onto a step the sphere is lifted by the height of the riser's highest corner above its own lowest point, and by the
// clearance. What would need more than the limit is a wall.
constexpr float LEDGE_CLEARANCE = 14.0f;
constexpr float LEDGE_MAX = 64.0f;
constexpr float STEP_HEIGHT = LEDGE_MAX - LEDGE_CLEARANCE;  // steps lower than this are walked up

constexpr float LANDING_SLOPE = 0.7f;  // flatter contacts end a jump

// Jumps. They begin with a speed upwards, units a frame; each tick of a frame adds GRAVITY to it, in the air as on the
// ground, and in the first frame of the rise each tick adds the lift while the jump key stays down.
constexpr float GRAVITY = -0.9f;
constexpr float LEAP_IMPULSE = 23.4f;  // from a run or a walk
constexpr float LEAP_LIFT = 1.1f;
constexpr float HOP_IMPULSE = 12.6f;  // from standing, or from slower movement
constexpr float HOP_LIFT = 5.4f;

constexpr float HEAD_HEIGHT = 72.0f;  // of the top of the head above the actor's position; the camera's is 60
