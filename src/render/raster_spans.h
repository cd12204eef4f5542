// The inside of the software rasteriser: the edge table and the routines that fill its rows. The fill routines differ
// in speed only; each gives the same bytes.
#pragma once

#include "records/texture_records.h"
#include "render/raster_cover.h"

#include <cstddef>
#include <cstdint>

struct EdgeHalf {
    int32_t x;                        // 16.16 pixels
    float u, v, light, inverseDepth;  // the first three divided by depth
};
struct EdgeRow {
    EdgeHalf left, right;
};
static_assert(sizeof(EdgeRow) == 40 && offsetof(EdgeRow, right) == 20);

constexpr int32_t EDGE_TABLE_ROWS = 1024;
extern EdgeRow EdgeTable[EDGE_TABLE_ROWS];  // by screen row; filled for FirstRow..EndRow - 1
extern int32_t FirstRow, EndRow;            // rows of the polygon being drawn, inside the frame

constexpr int32_t RECIPROCAL_COUNT = 1024;
extern float ReciprocalTable[RECIPROCAL_COUNT];  // entry 0 is 1, entry i is 1 / i

constexpr int32_t SPAN_BLOCK = 16;  // pixels between two exact texture positions; shorter spans have none inside
// Blocks of one span at most, the incomplete one included.
constexpr int32_t SPAN_BLOCKS_MAX = RECIPROCAL_COUNT / SPAN_BLOCK;

struct EdgeRows {
    const EdgeRow* table;  // by screen row
    int32_t first, end;    // rows of the frame
};

struct SpanTexture {
    const uint8_t* texels;  // first texel; rows are TEXTURE_PAGE_PITCH apart
    uint32_t mask;          // keeps an offset (row x 256 + column) inside the texture
};

enum class TexelZero { Drawn, Skipped };

inline int32_t SpanBlocks(int32_t pixels) {
    return (pixels + SPAN_BLOCK - 1) / SPAN_BLOCK;
}

inline int32_t CeilFixed(int32_t fixed) {
    return static_cast<int32_t>((int64_t{fixed} + 0xFFFF) >> 16);
}

// With `cover` (one entry a row of the frame) only pixels that the cover does not hold are drawn, and the cover takes
// them in. FillRowsAvx2 lets the cover take them in at once and may draw them as late as FinishRowsAvx2: until then
// frame, texels and shades must stay as they are. Without a cover all pixels are drawn when the call returns.
void FillRowsPortable(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover = nullptr);
void FillRowsAvx2(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero,
                  CoverRow* cover = nullptr);  // needs HasAvx2()
void FinishRowsAvx2();                         // needs HasAvx2()

bool HasAvx2();            // whether this processor has AVX2
extern bool UseAvx2Spans;  // HasAvx2() unless a test or benchmark changes it
