// The actor: a skinned, animated character placed in the world. The player is the only one.
#pragma once

#include "records/matrices.h"
#include "records/vec3.h"

#include <cstdint>

struct MeshRecord;
struct StateRecord;
struct AnimFileEntry;

struct Actor {
    int32_t active;  // 1 once the actor is set up
    Vec3 position;
    Vec3 angles;     // degrees about x, y (the heading, unbounded) and z
    Vec3 velocity;   // world units per frame
    Vec3 localMove;  // extra drive per tick in the actor's frame, for one frame
    MeshRecord* mesh;
    StateRecord* states;
    void* weights;
    int32_t state;
    uint32_t layerTimes[3];
    Transform base;  // rotation from the angles, translation = position
    int32_t blendDuration;
    int16_t onContact;  // the last move touched something
    float contactSlope;
    int32_t ticksSinceContact;
    int32_t ticksInState;
    int32_t randomWord;  // renewed at every drawing
    Matrix3 rotation;
    AnimFileEntry* animations;
};
