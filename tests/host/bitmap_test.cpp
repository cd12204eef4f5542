#include "core/gdi.h"
#include "core/testing.h"
#include "host/win32.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int WIDTH = 5;
constexpr int HEIGHT = 3;
// One picture of two colours. Each channel has a value that every format can hold exactly.
constexpr int PICTURE[HEIGHT][WIDTH] = {{0, 1, 1, 0, 0}, {1, 0, 1, 0, 1}, {0, 0, 0, 1, 0}};
constexpr uint8_t COLOURS[2][3] = {{24, 165, 222}, {247, 33, 90}};  // red, green, blue
constexpr uint16_t EXPECTED[2] = {3 << 11 | 41 << 5 | 27, 30 << 11 | 8 << 5 | 11};
constexpr int INDICES[2] = {
    3, 9};  // of the colours in palettes of 16 and more; all other indices are the first colour, too

constexpr uint16_t UNTOUCHED = 0xABCD;
constexpr int SURFACE_WIDTH = 16;
constexpr int SURFACE_HEIGHT = 10;

struct Format {
    const char* name;
    WORD bits;
    DWORD compression;
    bool topDown;
    DWORD headerBytes = 40;
    uint32_t masks[3] = {};
};

constexpr Format FORMATS[] = {
    {"1", 1, 0, false},
    {"4", 4, 0, false},
    {"8", 8, 0, false},
    {"16", 16, 0, false},
    {"24", 24, 0, false},
    {"32", 32, 0, false},
    {"8 top-down", 8, 0, true},
    {"24 top-down", 24, 0, true},
    {"8 with a long header", 8, 0, false, 124},
    {"16 with fields 5-6-5", 16, 3, false, 40, {0xF800, 0x07E0, 0x001F}},
    {"32 with fields the other way round", 32, 3, false, 40, {0x000000FF, 0x0003FC00, 0xFF000000}},
    {"RLE8", 8, 1, false},
    {"RLE4", 4, 2, false},
};

void Put(Bytes& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

// A channel's 8 bits as the high bits of a field of the mask's width.
uint32_t InField(uint32_t value, uint32_t mask) {
    const int bits = __builtin_popcount(mask);
    return (bits < 8 ? value >> (8 - bits) : value) << __builtin_ctz(mask) & mask;
}

uint32_t PixelValue(const Format& format, int colour) {
    const uint8_t* rgb = COLOURS[colour];
    if (format.bits == 1) return static_cast<uint32_t>(colour);
    if (format.bits <= 8) return static_cast<uint32_t>(INDICES[colour]);
    if (format.compression == 3)
        return InField(rgb[0], format.masks[0]) | InField(rgb[1], format.masks[1]) | InField(rgb[2], format.masks[2]);
    if (format.bits == 16) return InField(rgb[0], 0x7C00) | InField(rgb[1], 0x3E0) | InField(rgb[2], 0x1F);
    return static_cast<uint32_t>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
}

void PutRow(Bytes& bytes, const Format& format, const int (&row)[WIDTH]) {
    const size_t start = bytes.size();
    uint32_t packed = 0;  // of pixels smaller than a byte, the first in the highest bits
    for (int x = 0; x < WIDTH; ++x) {
        const uint32_t value = PixelValue(format, row[x]);
        if (format.bits >= 8)
            Put(bytes, value, format.bits / 8);
        else
            packed |= value << (32 - format.bits * (x + 1));
    }
    for (int bit = 0; format.bits < 8 && bit < WIDTH * format.bits; bit += 8)
        bytes.push_back(static_cast<uint8_t>(packed >> (24 - bit)));
    while ((bytes.size() - start) % 4 != 0)
        bytes.push_back(0xEE);
}

Bytes PixelData(const Format& format) {
    // Literals with padding, runs, ends of lines, and a step to the right over a pixel that keeps index 0.
    if (format.compression == 1)
        return {0, 5, 3, 3, 3, 9, 3, 0, 0, 0, 1, 9, 0, 4, 3, 9, 3, 9, 0, 0, 0, 2, 1, 0, 2, 9, 2, 3, 0, 1};
    if (format.compression == 2)
        return {0, 5, 0x33, 0x39, 0x30, 0, 0, 0, 5, 0x93, 0, 0, 0, 2, 1, 0, 2, 0x99, 2, 0x33, 0, 1};
    Bytes bytes;
    for (int y = 0; y < HEIGHT; ++y)
        PutRow(bytes, format, PICTURE[format.topDown ? y : HEIGHT - 1 - y]);
    return bytes;
}

void PutPalette(Bytes& bytes, const Format& format) {
    for (uint32_t i = 0; i < 1u << format.bits; ++i) {
        const uint8_t* rgb = COLOURS[i == PixelValue(format, 1)];
        Put(bytes, static_cast<uint32_t>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]), 4);
    }
}

// A bitmap's header, colour table and pixels; `bitsAt` says where the pixels begin.
Bytes MakeBitmap(const Format& format, size_t& bitsAt) {
    Bytes bytes;
    Put(bytes, format.headerBytes, 4);
    Put(bytes, WIDTH, 4);
    Put(bytes, static_cast<uint32_t>(format.topDown ? -HEIGHT : HEIGHT), 4);
    Put(bytes, 1, 2);
    Put(bytes, format.bits, 2);
    Put(bytes, format.compression, 4);
    bytes.resize(format.headerBytes, 0);
    if (format.compression == 3)
        for (const uint32_t mask : format.masks)
            Put(bytes, mask, 4);
    if (format.bits <= 8) PutPalette(bytes, format);
    bitsAt = bytes.size();
    const Bytes pixels = PixelData(format);
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    return bytes;
}

// Draws onto a surface of UNTOUCHED pixels; the file header in front puts the bitmap at an odd place in memory.
class Bitmaps : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        pixels_.assign(SURFACE_WIDTH * SURFACE_HEIGHT, UNTOUCHED);
        context_ = {reinterpret_cast<uint8_t*>(pixels_.data()), SURFACE_WIDTH * 2, SURFACE_WIDTH, SURFACE_HEIGHT, 16};
    }

    int Draw(const Bytes& bitmap, size_t bitsAt, int x, int y, int width, int height, int heightSource = HEIGHT) {
        constexpr size_t FILE_HEADER = 14;
        auto* block = static_cast<uint8_t*>(GlobalAlloc(GMEM_FIXED, FILE_HEADER + bitmap.size()));
        std::copy(bitmap.begin(), bitmap.end(), block + FILE_HEADER);
        const int lines =
            StretchDIBits(&context_, x, y, width, height, 0, 0, WIDTH, heightSource, block + FILE_HEADER + bitsAt,
                          reinterpret_cast<const BITMAPINFOHEADER*>(block + FILE_HEADER), DIB_RGB_COLORS, SRCCOPY);
        GlobalFree(block);
        return lines;
    }

    uint16_t At(int x, int y) const { return pixels_[static_cast<size_t>(y * SURFACE_WIDTH + x)]; }

    std::vector<uint16_t> pixels_;
    HostDeviceContext context_{};
};

TEST_F(Bitmaps, OfEveryFormatDrawTheSamePicture) {
    for (const Format& format : FORMATS) {
        SCOPED_TRACE(format.name);
        SetUp();
        size_t bitsAt = 0;
        const Bytes bitmap = MakeBitmap(format, bitsAt);
        EXPECT_EQ(Draw(bitmap, bitsAt, 2, 1, WIDTH, HEIGHT, format.topDown ? -HEIGHT : HEIGHT), HEIGHT);
        for (int y = 0; y < SURFACE_HEIGHT; ++y)
            for (int x = 0; x < SURFACE_WIDTH; ++x) {
                const bool inside = x >= 2 && x < 2 + WIDTH && y >= 1 && y < 1 + HEIGHT;
                EXPECT_EQ(At(x, y), inside ? EXPECTED[PICTURE[y - 1][x - 2]] : UNTOUCHED) << x << ", " << y;
            }
    }
}

TEST_F(Bitmaps, StretchByRepeatingPixelsAndAreCutAtTheSurfacesEdges) {
    size_t bitsAt = 0;
    const Bytes bitmap = MakeBitmap(FORMATS[4], bitsAt);
    EXPECT_EQ(Draw(bitmap, bitsAt, -2, 8, 2 * WIDTH, 2 * HEIGHT), HEIGHT);
    for (int x = 0; x < 2 * WIDTH - 2; ++x)
        for (int y = 8; y < SURFACE_HEIGHT; ++y)
            EXPECT_EQ(At(x, y), EXPECTED[PICTURE[0][(x + 2) / 2]]) << x;
    EXPECT_EQ(At(2 * WIDTH - 2, 8), UNTOUCHED);
    EXPECT_EQ(At(0, 7), UNTOUCHED);
}

TEST_F(Bitmaps, ThatReachOutOfTheirMemoryDrawNothing) {
    size_t bitsAt = 0;
    const Bytes bitmap = MakeBitmap(FORMATS[2], bitsAt);
    EXPECT_EQ(Draw(bitmap, bitsAt + 1, 0, 0, WIDTH, HEIGHT), 0) << "one byte short";
    EXPECT_EQ(Draw(bitmap, bitmap.size(), 0, 0, WIDTH, HEIGHT), 0) << "no pixels";
    EXPECT_EQ(Draw(bitmap, bitsAt, 0, 0, WIDTH, HEIGHT, HEIGHT + 1), 0) << "more rows than there are";
    EXPECT_EQ(Draw({bitmap.begin(), bitmap.begin() + 39}, 20, 0, 0, WIDTH, HEIGHT), 0) << "a cut header";
    const BITMAPINFOHEADER foreign{40, 1, 1, 1, 32, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(StretchDIBits(&context_, 0, 0, 1, 1, 0, 0, 1, 1, &foreign, &foreign, DIB_RGB_COLORS, SRCCOPY), 0)
        << "no block of GlobalAlloc";
    EXPECT_EQ(At(0, 0), UNTOUCHED);
}

// The sanitizers watch; here only the surface outside the drawn area can be checked.
TEST_F(Bitmaps, WithAnyByteWrongOrAnyEndMissingStayInside) {
    for (const Format& format : FORMATS) {
        SCOPED_TRACE(format.name);
        size_t bitsAt = 0;
        const Bytes good = MakeBitmap(format, bitsAt);
        for (size_t i = 0; i < good.size(); ++i) {
            Bytes bad = good;
            for (const int wrong : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
                bad[i] = static_cast<uint8_t>(wrong);
                Draw(bad, bitsAt, 0, 0, WIDTH, HEIGHT);
            }
            bad.resize(i);
            Draw(bad, std::min(bitsAt, i), 0, 0, WIDTH, HEIGHT);
        }
        EXPECT_EQ(At(WIDTH, 0), UNTOUCHED);
        EXPECT_EQ(At(0, HEIGHT), UNTOUCHED);
    }
}

}  // namespace
