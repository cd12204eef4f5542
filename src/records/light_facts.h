// What the light of a level is made of. The game takes these numbers from here, and so do the tools that write light
// and check it. Data only.
#pragma once

#include <cstdint>

// Light bytes, 0 to 127.
constexpr int NEUTRAL_LEVEL = 64;  // leaves a texture as it is; also what a light of intensity 1 adds
constexpr int BRIGHTEST_LEVEL = 127;

// The table of animated lights: those of lights.alt, then those that shots take as they fly.
constexpr int LIGHT_SLOT_COUNT = 150;

// Types of an animated light. Every type but LIGHT_FREE lights the character, too.
constexpr int32_t LIGHT_FREE = -1;
constexpr int32_t LIGHT_RAMP = 2;     // phase 0: stepUp a frame to highIntensity, phase 1: stepDown to lowIntensity
constexpr int32_t LIGHT_BLINK = 3;    // phase 1: highIntensity for highTime frames, phase 0: lowIntensity for lowTime
constexpr int32_t LIGHT_FLICKER = 4;  // intensity 2..3 at random, anew after 0..7 frames
constexpr int32_t LIGHT_DYNAMIC = 5;  // no contributions: points in the radius get (1 - distance / radius) x intensity
constexpr int32_t LIGHT_DYNAMIC_RAMP = 6;  // a ramp that raises all points in its radius alike, by NEUTRAL_LEVEL
constexpr int32_t LIGHT_PASSIVE = 7;       // lights the character only, as values above it do

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
