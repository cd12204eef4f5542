// One slot of the table of LIGHT_SLOT_COUNT animated lights, in memory exactly as it lies in lights.alt.
#pragma once

#include "records/light_facts.h"
#include "records/vec3.h"

#include <cstddef>
#include <cstdint>

// Types; those from 7 on, and any other value, light the character only.
constexpr int32_t LIGHT_FREE = -1;
constexpr int32_t LIGHT_RAMP = 2;          // phase 0: up to highIntensity, phase 1: down to lowIntensity
constexpr int32_t LIGHT_BLINK = 3;         // phase 1: highIntensity for highTime, phase 0: lowIntensity for lowTime
constexpr int32_t LIGHT_FLICKER = 4;       // intensity 2..3 at random for 0..7 frames
constexpr int32_t LIGHT_DYNAMIC = 5;       // raises the points in its radius, the near ones more
constexpr int32_t LIGHT_DYNAMIC_RAMP = 6;  // a ramp that raises all points in its radius alike, whatever its intensity

struct [[gnu::packed]] LightSlot {
    int32_t type;
    int32_t phase;                    // 0 or 1: part of the type's cycle
    int32_t pointCount, cornerCount;  // number of contributions to points, and to corners
    int32_t firstPoint, firstCorner;
    int32_t timer;  // frames
    Vec3 position;
    float radius;
    double radiusSquared;
    float intensity, highIntensity, lowIntensity;
    int32_t highTime, lowTime;  // frames
    float stepDown;             // added each frame in phase 1
    float stepUp;               // added each frame in phase 0
    uint8_t unused[16];
};
static_assert(sizeof(LightSlot) == 96 && offsetof(LightSlot, radiusSquared) == 44);
