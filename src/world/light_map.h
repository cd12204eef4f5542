// Baked light bytes and the level's light values, and polygon shading from them.
#pragma once

#include <cstdint>

void LoadLightMap(const char* path);    // a missing file changes nothing
void ApplyLightLevel();                 // LightScale and LightBias from LightLevel, LightContrast, LightMode
void ShadePolygon(int32_t polygon);     // writes the intensity of each PolyVertex
