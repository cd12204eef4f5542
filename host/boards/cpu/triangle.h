// The inside of the cpu board: a triangle made ready, its rows, and what fills them. The fill routines differ in speed
// only: each does the same operations on a pixel in the same order, so that each gives the same bytes.
#pragma once

#include "boards/board.h"
#include "boards/cpu/texture.h"

#include <algorithm>
#include <cstdint>

constexpr int32_t GROUP = 8;  // pixels filled at once
// A group may begin at the last pixel of a row; what lies beyond the row's end is stored as it was.
constexpr int32_t CPU_PITCH = BOARD_WIDTH + 2 * GROUP;

// The share of the fog's colour, 1/32768, where a depth code is a multiple of 1024, and the step to the next multiple.
struct FogEntry {
    int16_t share, step;
};
constexpr int16_t FOG_FRACTION = 0x3FC;  // the eight bits of a depth code that place it between two entries

// A BoardState made ready for filling.
struct FillState {
    const CpuTexture* texture;
    bool wrapS, wrapT;
    bool testsDepth, writesDepth;
    int32_t alphaReference;  // -1: no test
    bool addsAlpha;
    bool hasFog;
    uint64_t fogChannels;  // 16 bits each: blue lowest, green, red
    FogEntry fog[64];
};

struct Target {
    uint32_t* colour;  // 0x00RRGGBB
    uint16_t* depth;
};

// The column of an edge in each row: the first one whose centre does not lie left of it is the whole part.
struct Edge {
    double start, perRow;
    double At(int32_t row) const { return start + perRow * row; }
};

enum Plane { PLANE_OOW, PLANE_SOW, PLANE_TOW, PLANE_COUNT = 4 };
enum Channel { CHANNEL_BLUE, CHANNEL_GREEN, CHANNEL_RED, CHANNEL_ALPHA, CHANNEL_COUNT };

// Values at the centres of pixels: (origin + perRow x row) + perColumn x column.
struct Triangle {
    double origin[PLANE_COUNT], perRow[PLANE_COUNT], perColumn[PLANE_COUNT];
    float columnStep[PLANE_COUNT];
    // In 1/65536, modulo 2^32. The whole part is alpha rounded; for colours it is one more than that.
    uint32_t colourOrigin[CHANNEL_COUNT], colourPerRow[CHANNEL_COUNT], colourPerColumn[CHANNEL_COUNT];
    // Twice how far s and t go from one pixel to the next, without the factor W x W. Along a row this is the same
    // for all of the row; down a column it is the same for all of the column.
    double alongRow[2], alongRowPerRow[2];
    float downColumn[2], downColumnPerColumn[2];
    Edge longEdge, upperEdge, lowerEdge;  // from top to bottom; the two on the other side
    bool longEdgeIsLeft;
    int32_t firstRow, endRow;
};

// False: the triangle covers no pixel.
bool SetUpTriangle(const BoardVertex* corners, Triangle& triangle);

// The pixels begin..end - 1 of a row.
struct Span {
    int32_t begin, end;
};

inline Span SpanOf(const Triangle& triangle, int32_t row) {
    const double along = triangle.longEdge.At(row);
    const double upper = triangle.upperEdge.At(row);
    const double lower = triangle.lowerEdge.At(row);
    const double left = triangle.longEdgeIsLeft ? along : std::max(upper, lower);
    const double right = triangle.longEdgeIsLeft ? std::min(upper, lower) : along;
    const auto onScreen = [](double column) { return std::min<double>(std::max<double>(column, 0), BOARD_WIDTH); };
    return {static_cast<int32_t>(onScreen(left)), static_cast<int32_t>(onScreen(right))};
}

// The square of twice how far s and t go from one pixel to the next, without the factor W^4. The LOD is half of the
// square's binary exponent, minus one.
inline float SquareAlongRow(const Triangle& triangle, int32_t row) {
    const double s = triangle.alongRow[0] + triangle.alongRowPerRow[0] * row;
    const double t = triangle.alongRow[1] + triangle.alongRowPerRow[1] * row;
    return static_cast<float>(s * s + t * t);
}

using FillTriangle = void(const FillState& state, const Triangle& triangle, const Target& target, int32_t firstRow,
                          int32_t endRow);
FillTriangle FillTrianglePortable;
FillTriangle FillTriangleAvx2;  // needs CpuBoardHasAvx2()
