// Debug lines in one palette colour (LineColour).
#pragma once

#include <cstdint>

void DrawLine3D(float x1, float y1, float z1, float x2, float y2, float z2);  // camera space
void DrawLine2D(int32_t x1, int32_t y1, int32_t x2, int32_t y2);              // software back end, pixels
void DrawPolygonOutline(int32_t polygon);
