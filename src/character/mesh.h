// The character's mesh and texture coordinates, appended to WorldGeometry after the world and the sky.
#pragma once

#include "records/character_records.h"

#include <cstdint>

// Where the next character goes. LoadLevel sets both to the used counts; LoadMesh moves them past the mesh.
extern uint32_t CharPointBase;
extern uint32_t CharPolyBase;

void LoadMesh(const char* meshPath, MeshRecord& mesh, const char* coordinatesPath);
