// Skin weights and skinning.
//
// Weight file (.wei), little-endian and packed: 3 bytes unused, i8 version, u16 weld count W, u16 block count B, B
// blocks, W x { u16 from, u16 to }. Block: u16 matrix number (version above 3 only), u16 count, count x u16 hard point;
// u16 count, count x { u16 soft point, u16 weight in 1/65536 }. Points count from the character's first point. Block b
// moves bone BoneOrder[b]; a soft point blends with the position an earlier block gave it.
#pragma once

#include "records/actor_record.h"
#include "records/character_records.h"

extern const uint8_t BoneOrder[BONES_MAX];

// Lists the file on standard output and returns its image. A missing file ends the process with status 1 and without
// a shut-down: "Failed to LoadMalloc weights file!\n" on standard output, and on standard error with the path.
// FatalError(1, "Not a valid weights file") when a count or index is out of range.
void* LoadWeights(const char* path, const MeshRecord& mesh);

// Moves the rest positions with the bones, and writes the world positions into the character's ViewPoints.
void SkinActor(const Actor& actor);
