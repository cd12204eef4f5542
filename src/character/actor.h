// Actors: the character placed in the world.
#pragma once

#include "character/character_tables.h"

void AddActor(Actor& actor, MeshRecord* mesh, StateRecord* states, int32_t x, int32_t y, int32_t z,
              AnimFileEntry* animations);
