// The records of texture.bin: uint16 count N, 256 palette triplets (0..63), N TextureRecords, texel pages of
// 256 x 256 palette indices. Everything little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr uint32_t TEXTURE_PALETTE_OFFSET = 2;
constexpr uint32_t TEXTURE_RECORDS_OFFSET = 770;  // 2 + 3 x 256
constexpr uint32_t TEXTURE_PAGE_SIZE = 65536;     // 256 rows of 256 texels
constexpr uint32_t TEXTURE_PAGE_PITCH = 256;

struct [[gnu::packed]] TextureRecord {
    uint32_t texelOffset;   // ignored in the file; set at load to the first texel's offset from the file image's start
    uint8_t isTransparent;  // ignored in the file; set at load to 1 if any texel is 0
    uint16_t isEmpty;       // ignored in the file; set at load to 1 if every texel is 0
    uint8_t page;
    uint8_t x, y;           // left column and top row within the page
    uint8_t width, height;  // powers of two
};
static_assert(sizeof(TextureRecord) == 12 && offsetof(TextureRecord, page) == 7);
