// The records of texture.bin: uint16 count N, 256 palette triplets (0..63), N TextureRecords, texel pages of
// 256 x 256 palette indices. Everything little-endian.
#pragma once

#include "records/table_facts.h"

#include <cstddef>
#include <cstdint>

constexpr uint32_t TEXTURE_PALETTE_OFFSET = 2;
constexpr uint32_t TEXTURE_PAGE_PITCH = 256;
static_assert(TEXTURE_RECORDS_OFFSET == TEXTURE_PALETTE_OFFSET + 3 * 256);
static_assert(TEXTURE_PAGE_BYTES == 256 * TEXTURE_PAGE_PITCH);

struct [[gnu::packed]] TextureRecord {
    uint32_t texelOffset;   // ignored in the file; set at load to the first texel's offset from the file image's start
    uint8_t isTransparent;  // ignored in the file; set at load to 1 if any texel is 0
    uint16_t isEmpty;       // ignored in the file; set at load to 1 if every texel is 0
    uint8_t page;
    uint8_t x, y;           // left column and top row within the page
    uint8_t width, height;  // powers of two
};
static_assert(sizeof(TextureRecord) == TEXTURE_RECORD_BYTES && offsetof(TextureRecord, page) == 7);
