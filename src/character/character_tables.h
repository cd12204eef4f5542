// The character's global tables that lower layers read. Data only.
#pragma once

#include "records/actor_record.h"
#include "records/light_facts.h"
#include "records/table_facts.h"

#include <cstdint>

extern Actor PlayerActor;  // lives for the whole program; all zero at its start

constexpr int ACTOR_LIST_SIZE = 20;
extern Actor* ActorList[ACTOR_LIST_SIZE];  // entry 0 is the player
extern int16_t ActorCount;                 // set to 0 by LoadLevel, raised by AddActor

// The lights around the character, in its own frame; rebuilt every frame.
struct CharacterLight {
    float distance;
    Vec3 direction;  // unit vector from the light to the actor
    float strength;
};
extern CharacterLight CharacterLightList[CHARACTER_LIGHT_COUNT];
extern int32_t CharacterLightCount;

// The character's polygons in each leaf; an entry is valid while the leaf's frame stamp equals FrameCount.
struct LeafBin {
    uint16_t* polygons;
    int32_t count;
};
extern LeafBin LeafBins[BSP_LEAVES_MAX];
