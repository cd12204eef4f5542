// The player's shots: moving lights that fly straight ahead, a little upwards, and end at the first thing they touch.
// Everything counts frames, so a shot flies equally far, 2250 units at most, whatever the frame rate.
#pragma once

#include "records/vec3.h"

#include <cstdint>

constexpr int SHOT_COUNT = 8;
constexpr int16_t SHOT_FLYING = 0;
constexpr int16_t SHOT_FREE = -1;

struct Shot {
    Vec3 position;
    Vec3 velocity;  // world units a frame
    int16_t light;  // its light slot
    int16_t life;   // frames left, from 30
    int16_t state;  // SHOT_FLYING or SHOT_FREE
    int16_t phase;  // 0..3: starts at random, one more in each frame
};
static_assert(sizeof(Shot) == 32);  // no gaps: traces digest the table as it is

extern Shot Shots[SHOT_COUNT];

void ClearShots();   // frees every slot, and the first frame may fire; LoadLightSlots frees their lights
void FireShot();     // called by DebugKeys in every frame in which right Ctrl is held; fires in every 20th
void UpdateShots();  // moves and ends them; once a frame, before UpdateLights
