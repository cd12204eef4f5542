#include "host/win32.h"
#include "interfaces/gdi.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

// One picture of two colours, which fuzz/corpus/bitmap holds in every format there is.
constexpr int WIDTH = 5;
constexpr int HEIGHT = 3;
constexpr int PICTURE[HEIGHT][WIDTH] = {{0, 1, 1, 0, 0}, {1, 0, 1, 0, 1}, {0, 0, 0, 1, 0}};
constexpr uint16_t EXPECTED[2] = {3 << 11 | 41 << 5 | 27, 30 << 11 | 8 << 5 | 11};
const std::filesystem::path FORMATS = SOURCE_FOLDER "/fuzz/corpus/bitmap";
constexpr uint16_t UNTOUCHED = 0xABCD;
constexpr int SURFACE_WIDTH = 16;
constexpr int SURFACE_HEIGHT = 10;
constexpr size_t HEADER_AT = 14;  // an odd place in memory

Bytes ReadBitmap(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int32_t Number(const Bytes& file, size_t at) {
    int32_t number;
    std::memcpy(&number, &file[at], sizeof number);
    return number;
}

class Bitmaps : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        pixels_.assign(SURFACE_WIDTH * SURFACE_HEIGHT, UNTOUCHED);
        context_ = {reinterpret_cast<uint8_t*>(pixels_.data()), SURFACE_WIDTH * 2, SURFACE_WIDTH, SURFACE_HEIGHT, 16};
    }

    // Draws the bitmap and returns how many lines were drawn. `shift`: bytes by which the header says that the pixels
    // begin later.
    int Draw(const Bytes& file, int x, int y, int width, int height, int heightSource, size_t shift = 0) {
        auto* block = static_cast<uint8_t*>(GlobalAlloc(GMEM_FIXED, file.size()));
        std::copy(file.begin(), file.end(), block);
        const int lines =
            StretchDIBits(&context_, x, y, width, height, 0, 0, WIDTH, heightSource, block + Number(file, 10) + shift,
                          reinterpret_cast<const BITMAPINFOHEADER*>(block + HEADER_AT), DIB_RGB_COLORS, SRCCOPY);
        GlobalFree(block);
        return lines;
    }

    uint16_t At(int x, int y) const { return pixels_[static_cast<size_t>(y * SURFACE_WIDTH + x)]; }

    std::vector<uint16_t> pixels_;
    HostDeviceContext context_{};
};

TEST_F(Bitmaps, OfEveryFormatDrawTheSamePicture) {
    for (const char* name :
         {"one_bit", "four_bits", "rle4", "eight_bits", "rle8", "high_colour", "fields", "fields_32", "true_colour",
          "long_header", "true_colour_32", "eight_bits_top_down", "true_colour_top_down"}) {
        SCOPED_TRACE(name);
        SetUp();
        const Bytes file = ReadBitmap(FORMATS / name);
        EXPECT_EQ(Draw(file, 2, 1, WIDTH, HEIGHT, Number(file, HEADER_AT + 8)), HEIGHT);
        for (int y = 0; y < SURFACE_HEIGHT; ++y)
            for (int x = 0; x < SURFACE_WIDTH; ++x) {
                const bool inside = x >= 2 && x < 2 + WIDTH && y >= 1 && y < 1 + HEIGHT;
                EXPECT_EQ(At(x, y), inside ? EXPECTED[PICTURE[y - 1][x - 2]] : UNTOUCHED) << x << ", " << y;
            }
    }
}

TEST_F(Bitmaps, StretchByRepeatingPixelsAndAreCutAtTheSurfacesEdges) {
    EXPECT_EQ(Draw(ReadBitmap(FORMATS / "true_colour"), -2, 8, 2 * WIDTH, 2 * HEIGHT, HEIGHT), HEIGHT);
    for (int x = 0; x < 2 * WIDTH - 2; ++x)
        for (int y = 8; y < SURFACE_HEIGHT; ++y)
            EXPECT_EQ(At(x, y), EXPECTED[PICTURE[0][(x + 2) / 2]]) << x;
    EXPECT_EQ(At(2 * WIDTH - 2, 8), UNTOUCHED);
    EXPECT_EQ(At(0, 7), UNTOUCHED);
}

TEST_F(Bitmaps, ThatReachOutOfTheirMemoryDrawNothing) {
    const Bytes file = ReadBitmap(FORMATS / "eight_bits");
    EXPECT_EQ(Draw(file, 0, 0, WIDTH, HEIGHT, HEIGHT, 1), 0) << "one byte short";
    EXPECT_EQ(Draw(file, 0, 0, WIDTH, HEIGHT, HEIGHT + 1), 0) << "more rows than there are";
    EXPECT_EQ(At(0, 0), UNTOUCHED);
}

}  // namespace
