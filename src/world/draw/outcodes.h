// Where points in view space lie outside the frustum |x| <= z, |y| <= z, and drawing by it.
#pragma once

#include "records/world_records.h"

#include <cstdint>

inline uint8_t SideOutcode(const ViewPoint& view) {
    int code = 0;
    if (view.x > view.z) code |= OUT_RIGHT;
    if (view.x < -view.z) code |= OUT_LEFT;
    if (view.y > view.z) code |= OUT_TOP;
    if (view.y < -view.z) code |= OUT_BOTTOM;
    return static_cast<uint8_t>(code);
}

// A polygon whose corners are shaded and have outcodes: drawn, clipped or left out.
void DrawMeshByOutcodes(int32_t polygon);
