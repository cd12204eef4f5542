// Textures of the cpu board, laid out so that one load of 16 bytes brings the four texels of a bilinear sample.
#pragma once

#include "boards/board.h"

#include <cstdint>
#include <vector>

constexpr int32_t TEXEL_PAIR_BYTES = 8;

// Each texel lies together with the one below it, channel by channel: B B' G G' R R' A A', as numbers from -128 to 127.
// After the last column stands the first one again, and below the last row the first one: a repeated map ends nowhere,
// and one that is not repeated gives these texels no weight.
struct MipLevel {
    const int8_t* pairs;
    int32_t pitch;         // pairs in a row
    int32_t maskS, maskT;  // wrap a position around
    float lastS, lastT;    // the last position
    float scaleS, scaleT;  // from texture units to positions, which count 1/128 texels
};

struct CpuTexture {
    int32_t firstLod, lastLod;    // -1, -1: not loaded
    MipLevel levels[BOARD_LODS];  // by LOD, firstLod..lastLod
    std::vector<int8_t> pairs;    // the texels of all levels
};

CpuTexture MakeCpuTexture(const TextureImage& image);
