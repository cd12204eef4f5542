// Drawing by the outcodes of points in view space.
#pragma once

#include "render/side_outcode.h"

#include <cstdint>

// A polygon whose corners are shaded and have outcodes: drawn, clipped or left out.
void DrawMeshByOutcodes(int32_t polygon);
