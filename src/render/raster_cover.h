// Which pixels of the frame have their final colour already, while the nearest polygons are drawn first: one bit each.
#pragma once

#include <cstdint>

constexpr int32_t COVER_COLUMNS = 1024;  // wider frames are drawn from the farthest polygon on
constexpr int32_t COVER_ROWS = 1024;

// The columns begin..end - 1, at least one and all inside a row.
struct CoverColumns {
    int32_t first, last;  // indices of words
    uint64_t firstMask, lastMask;

    CoverColumns(int32_t begin, int32_t end)
        : first(begin >> 6), last((end - 1) >> 6), firstMask(~uint64_t{0} << (begin & 63)),
          lastMask(~uint64_t{0} >> (63 - ((end - 1) & 63))) {}
};

struct CoverRow {
    uint64_t words[COVER_COLUMNS / 64 + 1];  // the last is for what reaches beyond the end

    bool Holds(int32_t x) const { return (words[x >> 6] >> (x & 63) & 1) != 0; }

    bool Holds(const CoverColumns& columns) const {
        if (columns.first == columns.last) return (~words[columns.first] & columns.firstMask & columns.lastMask) == 0;
        if ((~words[columns.first] & columns.firstMask) != 0 || (~words[columns.last] & columns.lastMask) != 0)
            return false;
        for (int32_t i = columns.first + 1; i < columns.last; ++i)
            if (~words[i] != 0) return false;
        return true;
    }

    void Add(int32_t x) { words[x >> 6] |= uint64_t{1} << (x & 63); }

    // Sets, for up to 16 pixels from column x on, those whose bit is set in `bits`; the lowest bit is column x.
    void AddBits(int32_t x, uint32_t bits) {
        const int32_t shift = x & 63;
        words[x >> 6] |= uint64_t{bits} << shift;
        words[(x >> 6) + 1] |= uint64_t{bits} >> 1 >> (63 - shift);
    }
};
