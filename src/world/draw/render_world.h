// The level, drawn back to front from the camera.
#pragma once

#include <cstdint>

extern int32_t RenderListCount;  // entries of WorldGeometry.renderList in this frame

void RenderWorld();
