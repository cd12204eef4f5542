// Clipping and projection of one polygon whose points are in camera space.
#pragma once

#include "records/world_records.h"

#include <cstdint>

void DrawPolygon(int32_t polygon);                             // projects, shades, submits
void DrawPolygonClipped(int32_t polygon, uint8_t edgeMask);    // shades, clips against the planes in edgeMask
void DrawPolygonAuto(int32_t polygon);                         // chooses from the outcodes
void DrawMeshPolygon(int32_t polygon);                         // as above, already shaded
void DrawMeshPolygonClipped(int32_t polygon, uint8_t edgeMask);
PolyRecord* ClipPolygon(int32_t polygon, uint8_t edgeMask);    // a scratch record; its corner count may be 0
