#include "boards/cpu/texture.h"

#include <algorithm>

namespace {

constexpr float POSITIONS = 128;  // positions to a texel

size_t PairBytes(const TextureLevel& level) {
    return size_t{TEXEL_PAIR_BYTES} * (level.width + 1) * level.height;
}

void WritePairs(const TextureLevel& level, int8_t* out) {
    for (uint32_t row = 0; row < level.height; ++row) {
        const uint32_t* upper = &level.texels[row * level.width];
        const uint32_t* lower = &level.texels[(row + 1) % level.height * level.width];
        for (uint32_t i = 0; i <= level.width; ++i) {
            const uint32_t column = i % level.width;
            for (int shift = 0; shift < 32; shift += 8) {
                *out++ = static_cast<int8_t>((upper[column] >> shift & 0xFF) ^ 0x80);
                *out++ = static_cast<int8_t>((lower[column] >> shift & 0xFF) ^ 0x80);
            }
        }
    }
}

}  // namespace

CpuTexture MakeCpuTexture(const TextureImage& image) {
    CpuTexture texture{image.firstLod, image.firstLod + static_cast<int32_t>(image.levels.size()) - 1, {}, {}};
    size_t bytes = 0;
    for (const TextureLevel& level : image.levels)
        bytes += PairBytes(level);
    texture.pairs.resize(bytes);
    const TextureLevel& largest = image.levels.front();
    const auto longer = static_cast<float>(std::max(largest.width, largest.height));
    const float unit = longer / 256 * POSITIONS;
    int8_t* out = texture.pairs.data();
    MipLevel* mip = &texture.levels[image.firstLod];
    for (const TextureLevel& level : image.levels) {
        WritePairs(level, out);
        const auto width = static_cast<float>(level.width);
        const auto height = static_cast<float>(level.height);
        // One side of a small level of a long map may no longer shrink; the map still spans it from end to end.
        *mip++ = {out,
                  static_cast<int32_t>(level.width) + 1,
                  static_cast<int32_t>(level.width * 128) - 1,
                  static_cast<int32_t>(level.height * 128) - 1,
                  (width - 1) * POSITIONS,
                  (height - 1) * POSITIONS,
                  unit * width / static_cast<float>(largest.width),
                  unit * height / static_cast<float>(largest.height)};
        out += PairBytes(level);
    }
    return texture;
}
