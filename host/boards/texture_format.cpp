#include "boards/texture_format.h"

#include <algorithm>

namespace {

constexpr uint32_t Pack(uint32_t alpha, uint32_t red, uint32_t green, uint32_t blue) {
    return alpha << 24 | red << 16 | green << 8 | blue;
}

// The `bits` bits of `texel` from `shift` on, widened to 8.
constexpr uint32_t Field(uint32_t texel, int shift, int bits) {
    uint32_t value = (texel >> shift & ((1U << bits) - 1)) << (8 - bits);
    for (int known = bits; known < 8; known *= 2)
        value |= value >> known;
    return value;
}

uint32_t Rgb332(uint32_t alpha, uint32_t texel) {
    return Pack(alpha, Field(texel, 5, 3), Field(texel, 2, 3), Field(texel, 0, 2));
}

uint32_t Yiq422(uint32_t alpha, uint32_t texel, const GuNccTable& table) {
    const auto channel = [&](int colour) {
        const int sum = table.y[texel >> 4 & 15] + table.i[texel >> 2 & 3][colour] + table.q[texel & 3][colour];
        return static_cast<uint32_t>(std::clamp(sum, 0, 255));
    };
    return Pack(alpha, channel(0), channel(1), channel(2));
}

uint32_t Indexed(uint32_t alpha, uint32_t texel, const GuTexPalette& palette) {
    return alpha << 24 | (palette.data[texel & 0xFF] & 0xFFFFFF);
}

constexpr uint32_t Grey(uint32_t alpha, uint32_t value) {
    return Pack(alpha, value, value, value);
}

}  // namespace

uint32_t TexelBytes(GrTextureFormat_t format) {
    return format >= GR_TEXFMT_ARGB_8332 ? 2 : 1;
}

bool UsesNccTable(GrTextureFormat_t format) {
    return format == GR_TEXFMT_YIQ_422 || format == GR_TEXFMT_AYIQ_8422;
}

bool UsesPalette(GrTextureFormat_t format) {
    return format == GR_TEXFMT_P_8 || format == GR_TEXFMT_AP_88;
}

uint32_t DecodeTexel(GrTextureFormat_t format, uint32_t texel, const GuTexTable& table) {
    switch (format) {
    case GR_TEXFMT_RGB_332: return Rgb332(255, texel);
    case GR_TEXFMT_YIQ_422: return Yiq422(255, texel, table.nccTable);
    case GR_TEXFMT_ALPHA_8: return Grey(texel & 0xFF, texel & 0xFF);
    case GR_TEXFMT_INTENSITY_8: return Grey(255, texel & 0xFF);
    case GR_TEXFMT_ALPHA_INTENSITY_44: return Grey(Field(texel, 4, 4), Field(texel, 0, 4));
    case GR_TEXFMT_P_8: return Indexed(255, texel, table.palette);
    case GR_TEXFMT_ARGB_8332: return Rgb332(texel >> 8, texel);
    case GR_TEXFMT_AYIQ_8422: return Yiq422(texel >> 8, texel, table.nccTable);
    case GR_TEXFMT_RGB_565: return Pack(255, Field(texel, 11, 5), Field(texel, 5, 6), Field(texel, 0, 5));
    case GR_TEXFMT_ARGB_1555:
        return Pack(Field(texel, 15, 1), Field(texel, 10, 5), Field(texel, 5, 5), Field(texel, 0, 5));
    case GR_TEXFMT_ARGB_4444:
        return Pack(Field(texel, 12, 4), Field(texel, 8, 4), Field(texel, 4, 4), Field(texel, 0, 4));
    case GR_TEXFMT_ALPHA_INTENSITY_88: return Grey(texel >> 8, texel & 0xFF);
    case GR_TEXFMT_AP_88: return Indexed(texel >> 8, texel, table.palette);
    }
    return 0;
}

LevelSize SizeOfLevel(GrAspectRatio_t aspect, int32_t lod) {
    const uint32_t longer = 256U >> lod;
    const int narrower = aspect - GR_ASPECT_1x1;  // > 0: the width is shorter
    return {std::max(1U, narrower > 0 ? longer >> narrower : longer),
            std::max(1U, narrower < 0 ? longer >> -narrower : longer)};
}

uint32_t TexelsOfLevels(GrAspectRatio_t aspect, GrLOD_t large, GrLOD_t small) {
    uint32_t texels = 0;
    for (int32_t lod = large; lod <= small; ++lod) {
        const LevelSize size = SizeOfLevel(aspect, lod);
        texels += size.width * size.height;
    }
    return texels;
}
