// A device-independent bitmap in memory, checked and made readable pixel by pixel.
#pragma once

#include "host/win32.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

// One colour channel of a 16- or 32-bit pixel.
struct ChannelMask {
    uint32_t mask;
    int shift;  // by how much to the right, to reach bit 0
    int bits;

    uint32_t Widened(uint32_t pixel) const;  // 0..255: high bits repeated; 0 for an empty mask
};

struct BitmapSource {
    int64_t width, height;  // 1..32767
    int bits;               // 1, 4, 8, 16, 24 or 32; packed rows are unpacked to 8
    bool topDown;
    const uint8_t* rows;
    size_t stride;                      // bytes
    std::array<uint16_t, 256> colours;  // 5-6-5, by index
    ChannelMask red, green, blue;       // 16 and 32 bits
    std::vector<uint8_t> unpacked;      // what `rows` points to when the bitmap was run-length coded

    const uint8_t* Row(int64_t y) const {  // y from the top
        return rows + static_cast<size_t>(topDown ? y : height - 1 - y) * stride;
    }
    uint16_t Pixel(const uint8_t* row, int64_t x) const;  // 5-6-5 by truncation
};

// False: not a bitmap that can be drawn, or one that reaches out of its block of GlobalAlloc.
bool ReadBitmap(const BITMAPINFOHEADER* info, const void* bits, BitmapSource& bitmap);
