// Animation files, the clocks of an actor's states, and the pose of its skeleton.
//
// Animation file (.anm), little-endian and packed, used in place; offsets count from the file's start:
//   0 u32 unused   4 u32 length   8 u32 track count N   12 u32 hidden block   16 u32 rotation-track table
//   20 u32 position-track table   24 2 x u32 unused   32 i32 skeleton commands: bone >= 0 evaluate, -1 push, -2 pop,
//   -3 end
// Both tables: u32 unused, N x u32 track offset. Rotation track: u32 unused, 3 x f64 pivot in the mesh's rest frame,
// i32 key count, keys of { u32 time, 4 x f64 w x y z }. Position track: u32 unused, i32 key count, keys of { u32 time,
// 3 x f64 }. Keys never go back in time.
#pragma once

#include "records/actor_record.h"
#include "records/character_records.h"
#include "records/table_facts.h"

#include <cstdint>

// Every entry up to the one without a path. FatalError(0, ...): "No Animation File Found", or "Not a valid animation
// file" for tracks, keys or commands out of range, or a command for a bone that has no tracks or is not in the mesh.
// FatalError(1, ...): MATRIX_STACK_UNDERFLOW for a pop without a push, MATRIX_STACK_OVERFLOW for too many pushes.
void LoadAnimations(AnimFileEntry* table, const MeshRecord& mesh);
void LoadAnimation(const char* path, AnimRecord& record, const MeshRecord& mesh);

// Once a frame: calls the state's handler, moves the clocks on, makes the transition of a finished animation, and adds
// the drive to the velocity.
void AdvanceActor(Actor& actor);
void SetActorState(Actor& actor, int32_t state, uint32_t startTime, int32_t blendDuration);

// Computes the world transform of every bone, at the start of drawing the actor.
void PoseActor(Actor& actor);
