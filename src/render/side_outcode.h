// Where a point in view space lies outside the frustum |x| <= z, |y| <= z: the OUT_ bits of the sides.
#pragma once

#include "records/world_records.h"

#include <cstdint>
#ifdef __x86_64__
#include <immintrin.h>
#endif

inline uint8_t SideOutcode(float x, float y, float z) {
#ifdef __x86_64__
    static_assert(OUT_RIGHT == 1 && OUT_LEFT == 2 && OUT_TOP == 4 && OUT_BOTTOM == 8);
    return static_cast<uint8_t>(_mm_movemask_ps(_mm_cmpgt_ps(_mm_setr_ps(x, -x, y, -y), _mm_set1_ps(z))));
#else
    int code = 0;
    if (x > z) code |= OUT_RIGHT;
    if (x < -z) code |= OUT_LEFT;
    if (y > z) code |= OUT_TOP;
    if (y < -z) code |= OUT_BOTTOM;
    return static_cast<uint8_t>(code);
#endif
}

inline uint8_t SideOutcode(const ViewPoint& view) {
    return SideOutcode(view.x, view.y, view.z);
}
