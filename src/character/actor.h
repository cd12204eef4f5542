// Actors: the character placed in the world.
#pragma once

#include "character/character_tables.h"
#include "records/character_records.h"

// Sets the actor up at a place, in state 0 at animation time 10, and enters it in ActorList (a full list takes no
// more). Angles, velocity, local move and contact fields keep what they held.
void AddActor(Actor& actor, MeshRecord* mesh, StateRecord* states, int32_t x, int32_t y, int32_t z,
              AnimFileEntry* animations);

// The base transform from position and angles. The mesh faces its own -z, so it is turned by half a turn.
void UpdateActorBase(Actor& actor);
