// The character's mesh and texture coordinates, appended to WorldGeometry after the world and the sky.
//
// Mesh file (.msh), little-endian: u32 unused, u32 bone count, u32 unused, one u32 part offset per bone (the two low
// bits are cleared). Only part 0 is read: u32 unused, u32 point count P, u32 face count F, P x 3 f32 positions, F x 3
// u32 point indices counted from the part's first point.
// Texture-coordinate file (.tuv): 16 bytes unused, F x { u32 texture counted from CHAR_TEXTURE_BASE, 3 x (f32 u,
// f32 v) in 1/256 texel }.
#pragma once

#include "records/character_records.h"
#include "records/table_facts.h"

#include <cstdint>

// Entries of WorldGeometry where the next character goes. LoadLevel sets both to the used counts; LoadMesh moves them
// past the mesh.
extern uint32_t CharPointBase;
extern uint32_t CharPolyBase;

// FatalError(0, ...): "No Mesh File Found", "No TUV File Found"; "Not a valid mesh file" and "Not a valid TUV file"
// for counts, indices or coordinates out of range, "No room for the mesh" when the pool or WorldGeometry is full.
void LoadMesh(const char* meshPath, MeshRecord& mesh, const char* coordinatesPath);
