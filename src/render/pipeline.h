// Clipping and projection of one polygon whose points are in camera space.
#pragma once

#include "records/world_records.h"

#include <cstdint>

void DrawPolygon(int32_t polygon);                           // projects, shades, submits
void DrawPolygonClipped(int32_t polygon, uint8_t edgeMask);  // shades, clips against the planes in edgeMask
void DrawPolygonAuto(int32_t polygon);                       // chooses from the outcodes
void DrawMeshPolygon(int32_t polygon);  // like DrawPolygonAuto, for a polygon that is already shaded
void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask);

// Clips against the planes in edgeMask, of which there is at least one. The result is a scratch record, good until the
// next clip; its corner count may be 0, also when the polygon needs more than CLIP_SCRATCH_ENTRIES.
PolyRecord* ClipPolygon(int32_t polygon, uint8_t edgeMask);
