// Texels of every format as 0xAARRGGBB.
#pragma once

#include "host/glide.h"

#include <cstdint>
#include <vector>

constexpr uint32_t TEXTURE_FORMATS = GR_TEXFMT_AP_88 + 1;

uint32_t TexelBytes(GrTextureFormat_t format);  // 1 or 2
bool UsesNccTable(GrTextureFormat_t format);
bool UsesPalette(GrTextureFormat_t format);

// Fields widen to 8 bits by repeating their high bits; formats without alpha give 255. `texel` is in host byte order.
uint32_t DecodeTexel(GrTextureFormat_t format, uint32_t texel, const GuTexTable& table);

// Width and height of the level of this LOD.
struct LevelSize {
    uint32_t width, height;
};
LevelSize SizeOfLevel(GrAspectRatio_t aspect, int32_t lod);
uint32_t TexelsOfLevels(GrAspectRatio_t aspect, GrLOD_t large, GrLOD_t small);
