#include "machine/picture_scaler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

struct Size {
    int width, height;
};

// One channel of a shown pixel, point by point as a graphics card is told to do it.
double Sampled(const std::vector<uint32_t>& picture, Size from, Size to, int x, int y, int shift,
               PictureFilter filter) {
    const auto texel = [&](int column, int row) {
        column = std::clamp(column, 0, from.width - 1), row = std::clamp(row, 0, from.height - 1);
        return picture[static_cast<size_t>(row * from.width + column)] >> shift & 0xFF;
    };
    const auto place = [&](int shown, int size, int shownSize) {
        const double at = (shown + 0.5) * size / shownSize;
        const double enlargement = filter == PictureFilter::Sharp ? std::max(1.0 * shownSize / size, 1.0) : 1.0;
        const double off = at - std::floor(at) - 0.5, even = 0.5 - 0.5 / enlargement;
        return std::floor(at) + (off - std::clamp(off, -even, even)) * enlargement;
    };
    const double u = place(x, from.width, to.width), v = place(y, from.height, to.height);
    const int column = static_cast<int>(std::floor(u)), row = static_cast<int>(std::floor(v));
    const double right = u - column, lower = v - row;
    return (texel(column, row) * (1 - right) + texel(column + 1, row) * right) * (1 - lower) +
           (texel(column, row + 1) * (1 - right) + texel(column + 1, row + 1) * right) * lower;
}

TEST(PictureScaler, ShowsWhatAGraphicsCardWouldAndRowsThatChangeAlone) {
    std::minstd_rand random(7);
    const Size from{16, 12};
    PictureScaler scaler;
    for (const Size to : {Size{48, 36}, {50, 37}, {25, 20}, {11, 9}}) {
        for (const PictureFilter filter : {PictureFilter::Sharp, PictureFilter::Linear}) {
            std::vector<uint32_t> picture(static_cast<size_t>(from.width * from.height));
            std::generate(picture.begin(), picture.end(), [&] { return static_cast<uint32_t>(random()) * 3; });
            const auto pitch = static_cast<size_t>(to.width) + 3;
            std::vector<uint32_t> shown(pitch * static_cast<size_t>(to.height), 0x55);
            scaler.Prepare(from.width, from.height, to.width, to.height, filter);
            scaler.Scale(picture.data(), 0, to.height, shown.data(), pitch);
            for (int y = 0; y < to.height; ++y) {
                const uint32_t* const row = &shown[static_cast<size_t>(y) * pitch];
                for (int x = 0; x < to.width; ++x)
                    for (const int shift : {0, 8, 16, 24})
                        ASSERT_NEAR(row[x] >> shift & 0xFF, Sampled(picture, from, to, x, y, shift, filter), 3)
                            << to.width << " " << x << "," << y;
                ASSERT_EQ(row[to.width], 0x55u) << "behind the row";
            }
            for (int changed = 0; changed < from.height; ++changed) {
                picture[static_cast<size_t>(changed * from.width) + 3] ^= 0xF0F0F0;
                std::vector<uint32_t> again = shown;
                const PictureScaler::Rows rows = scaler.ShownRows(changed, changed + 1);
                scaler.Scale(picture.data(), rows.first, rows.end, shown.data(), pitch);
                scaler.Scale(picture.data(), 0, to.height, again.data(), pitch);
                ASSERT_EQ(shown, again) << changed;
            }
        }
    }
}

}  // namespace
