// What the light of a level is made of. The game takes these numbers from here, and so do the tools that write light
// and check it. Data only.
#pragma once

#include <cstdint>

// Light bytes, 0 to 127.
constexpr int NEUTRAL_LEVEL = 64;  // leaves a texture as it is; also what a light of intensity 1 adds
constexpr int BRIGHTEST_LEVEL = 127;

// The table of animated lights: those of lights.alt, then those that shots take as they fly.
constexpr int LIGHT_SLOT_COUNT = 150;
constexpr int LIGHT_CONTRIBUTION_MAX = 32767;  // contributions in lights.alt to points, and again to corners
constexpr int GATHERED_POINTS_MAX = 1000;      // points that a dynamic light reaches; those of the lowest numbers
constexpr float SHOT_LIGHT_RADIUS = 500.0f;    // world units
constexpr int CHARACTER_LIGHT_COUNT = 30;      // lights that reach the character at once; it takes the first ones

// A flickering light has an intensity of (FLICKER_BASE + 0 .. FLICKER_RANGE) / FLICKER_SCALE, at random.
constexpr int FLICKER_RANGE = 127;
constexpr int FLICKER_BASE = 256;
constexpr int FLICKER_SCALE = 128;
constexpr int FLICKER_TIME_BITS = 7;  // it keeps it for so many frames at most, at random

// Polygons with a light byte a corner.
constexpr uint32_t CORNER_LIGHT_CORNERS = 8;       // corners of such a polygon, at most
constexpr uint32_t CORNER_LIGHT_POLYGONS = 20000;  // such polygons that the tables have room for
constexpr uint32_t CORNER_NUMBERS = 65536;         // polygon x 8 + corner, as a light's contribution names it
constexpr uint32_t CORNER_NUMBER_POLYGONS = CORNER_NUMBERS / CORNER_LIGHT_CORNERS;
