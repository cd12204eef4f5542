// Actors: the character placed in the world, and what its drawing needs every frame.
#pragma once

#include "character/character_tables.h"
#include "records/character_records.h"

#include <cstdint>

// Sets the actor up in state 0, standing at (x, y, z), and enters it in ActorList. Its angles, velocity and contact
// fields keep what the previous level left in them.
void AddActor(Actor& actor, MeshRecord* mesh, StateRecord* states, int32_t x, int32_t y, int32_t z,
              AnimFileEntry* animations);

// The actor's base transform from its position and angles. A mesh faces -z, hence the half turn.
void UpdateActorBase(Actor& actor);

void DrawActorAt(int16_t index);  // poses and draws ActorList[index]
// Lights and skins the actor and bins it into the leaves, for RenderWorld of the same frame. Rebuilds the base last, so
// a pose uses the base of the frame before.
void DrawActor(Actor& actor);
// Bins the actor's triangles into the leaves, by the skinned points in its ViewPoints and the light in IntensityCache.
void BinActor(const Actor& actor);

void GatherActorLights(float x, float y, float z);  // fills CharacterLightList

// The eye's side of a triangle of skinned points, truncated to whole units: negative faces the eye.
int32_t FacingSide(uint32_t a, uint32_t b, uint32_t c, const Vec3& eye);
