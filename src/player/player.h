// The player character: what it is made of, and its per-frame step. Where it is: PlayerActor.
#pragma once

#include "character/character_tables.h"
#include "records/character_records.h"

constexpr int PLAYER_STATE_COUNT = 20;

extern MeshRecord PlayerMesh;
extern StateRecord PlayerStates[PLAYER_STATE_COUNT];
extern AnimFileEntry PlayerAnimations[];  // ends with an entry without a path

void UpdatePlayer();
