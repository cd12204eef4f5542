// Inside of the cpu board: a triangle made ready, its rows, and what fills them. The fill routines differ in speed
// only: each does the same float operations on a pixel in the same order, so that each gives the same bytes.
#pragma once

#include "boards/board.h"

#include <algorithm>
#include <cstdint>

constexpr int32_t GROUP = 8;  // pixels filled at once
// A group may begin at the last pixel of a row; what lies beyond the row's end is stored as it was.
constexpr int32_t CPU_PITCH = BOARD_WIDTH + 2 * GROUP;

enum Value { VALUE_OOW, VALUE_SOW, VALUE_TOW, VALUE_RED, VALUE_GREEN, VALUE_BLUE, VALUE_ALPHA, VALUE_COUNT = 8 };

struct MipLevel {
    const uint32_t* texels;
    int32_t lastColumn, lastRow;  // also the masks that wrap around
    int32_t rowShift;             // log2 of the width
    float scaleS, scaleT;         // from texture units to 1/128 texel
};

struct CpuTexture {
    TextureImage image;  // no levels: not loaded
    int32_t firstLod, lastLod;
    MipLevel levels[BOARD_LODS];  // by LOD, firstLod..lastLod
};

// A BoardState made ready for filling.
struct FillState {
    const CpuTexture* texture;
    bool wrapS, wrapT;
    bool testsDepth, writesDepth;
    int32_t alphaReference;  // -1: no test
    uint32_t addMask;        // 0x00FFFFFF where the vertex's alpha is added to the colour, else 0
    bool hasFog;
    uint32_t fogColour;
    int32_t fog[64];  // entry in the low half, what leads to the next one in the high half
};

struct Target {
    uint32_t* colour;  // 0x00RRGGBB
    uint16_t* depth;
};

// Where an edge crosses the centre lines of the rows: the first column whose centre does not lie left of it.
struct Edge {
    int32_t x, y, dx, dy;  // upper end and extent, 1/16 pixels
};

class EdgeWalk {
public:
    EdgeWalk(const Edge& edge, int32_t row) : divisor_(16 * edge.dy) {
        const int64_t numerator =
            int64_t{edge.x - 8} * edge.dy + int64_t{16 * row + 8 - edge.y} * edge.dx + divisor_ - 1;
        // Both fit a double, and so near to a whole number no quotient lies that it could be rounded to one.
        const double quotient = static_cast<double>(numerator) / divisor_;
        column_ = static_cast<int32_t>(quotient);
        if (column_ > quotient) --column_;
        rest_ = static_cast<int32_t>(numerator - int64_t{column_} * divisor_);
        step_ = edge.dx / edge.dy - (edge.dx % edge.dy < 0);
        restStep_ = 16 * (edge.dx - step_ * edge.dy);
    }
    int32_t Column() const { return column_; }
    void NextRow() {
        column_ += step_;
        rest_ += restStep_;
        if (rest_ < divisor_) return;
        rest_ -= divisor_;
        ++column_;
    }

private:
    int32_t divisor_;
    int32_t column_, rest_;
    int32_t step_, restStep_;
};

struct Triangle {
    // Values at the centre of a pixel: (origin + perRow x rows) + perColumn x columns, both counted from the origin.
    double origin[VALUE_COUNT], perColumn[VALUE_COUNT], perRow[VALUE_COUNT];
    float columnStep[VALUE_COUNT], rowStep[VALUE_COUNT];
    double x, y;    // of the origin, pixels
    Edge edges[3];  // the one from top to bottom, and the upper and the lower one on the other side
    bool longEdgeIsLeft;
    int32_t firstRow, middleRow, endRow;
};

// False: it has no area.
bool SetUpTriangle(const BoardVertex* corners, Triangle& triangle);

// Calls fill(row, begin, end) for each row inside firstRow..endRow that has pixels.
template <typename Fill>
inline void WalkRows(const Triangle& triangle, int32_t firstRow, int32_t endRow, Fill fill) {
    int32_t row = std::max(firstRow, triangle.firstRow);
    const int32_t end = std::min(endRow, triangle.endRow);
    if (row >= end) return;
    EdgeWalk along(triangle.edges[0], row);
    for (int half = 1; half <= 2; ++half) {
        const int32_t halfEnd = half == 1 ? std::min(end, triangle.middleRow) : end;
        if (row >= halfEnd) continue;
        EdgeWalk across(triangle.edges[half], row);
        for (; row < halfEnd; ++row, along.NextRow(), across.NextRow()) {
            const int32_t left = triangle.longEdgeIsLeft ? along.Column() : across.Column();
            const int32_t right = triangle.longEdgeIsLeft ? across.Column() : along.Column();
            const int32_t begin = std::max(left, 0);
            const int32_t stop = std::min(right, BOARD_WIDTH);
            if (begin < stop) fill(row, begin, stop);
        }
    }
}

using FillTriangle = void(const FillState& state, const Triangle& triangle, const Target& target, int32_t firstRow,
                          int32_t endRow);
FillTriangle FillTrianglePortable;
FillTriangle FillTriangleAvx2;  // needs CpuBoardHasAvx2()

constexpr float TEXEL_LIMIT = 1e9F;  // 1/128 texels; positions are cut off there
