// One slot of the table of 150 animated lights, in memory exactly as it lies in lights.alt.
#pragma once

#include "records/vec3.h"

#include <cstddef>
#include <cstdint>

constexpr int LIGHT_SLOT_COUNT = 150;
constexpr int32_t LIGHT_FREE = -1;

struct [[gnu::packed]] LightSlot {
    int32_t type;  // LIGHT_FREE; 2 ramp, 3 blink, 4 flicker, 5 dynamic, 6 dynamic ramp, 7 and 8 passive
    int32_t phase;
    int32_t pointCount, cornerCount;  // contributions
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
