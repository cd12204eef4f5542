// Which pixels of the frame have their final colour already, while polygons are drawn front to back: one bit each.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

constexpr int32_t COVER_COLUMNS = 1024;  // wider frames are drawn back to front
constexpr int32_t COVER_ROWS = 1024;

struct CoverRow {
    uint64_t words[COVER_COLUMNS / 64 + 1];  // the last is for what reaches beyond the end

    // Of 16 pixels from column x on, the first in the lowest bit.
    uint32_t At(int32_t x) const {
        const int32_t shift = x & 63;
        const uint64_t low = words[x >> 6] >> shift;
        const uint64_t high = words[(x >> 6) + 1] << 1 << (63 - shift);
        return static_cast<uint32_t>(low | high) & 0xFFFF;
    }

    // The columns begin..end - 1, which lie inside the row.
    bool Holds(int32_t begin, int32_t end) const {
        for (int32_t x = begin; x < end; x = (x | 63) + 1) {
            const uint64_t mask = WordMask(x, end);
            if ((words[x >> 6] & mask) != mask) return false;
        }
        return true;
    }

    void Add(int32_t begin, int32_t end) {
        for (int32_t x = begin; x < end; x = (x | 63) + 1)
            words[x >> 6] |= WordMask(x, end);
    }

    // Of up to 16 pixels from column x on those whose bit is set, the first in the lowest.
    void AddBits(int32_t x, uint32_t bits) {
        const int32_t shift = x & 63;
        words[x >> 6] |= uint64_t{bits} << shift;
        words[(x >> 6) + 1] |= uint64_t{bits} >> 1 >> (63 - shift);
    }

private:
    // Of the columns x..end - 1 those in the word of x.
    static uint64_t WordMask(int32_t x, int32_t end) {
        const int32_t count = std::min(end - x, 64 - (x & 63));
        return ~uint64_t{0} >> (64 - count) << (x & 63);
    }
};
