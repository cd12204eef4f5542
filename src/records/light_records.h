// One slot of the table of LIGHT_SLOT_COUNT animated lights, in memory exactly as it lies in lights.alt.
#pragma once

#include "records/light_facts.h"
#include "records/vec3.h"

#include <cstddef>
#include <cstdint>

struct [[gnu::packed]] LightSlot {
    int32_t type;                     // one of LIGHT_FREE to LIGHT_PASSIVE; any other value is passive
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
