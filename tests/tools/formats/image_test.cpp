#include "formats/binary.h"
#include "formats/error.h"
#include "formats/image.h"

#include <gtest/gtest.h>

namespace {

Image Gradient(int width, int height) {
    Image image(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.At(x, y) = {static_cast<uint8_t>(x * 9), static_cast<uint8_t>(y * 9), static_cast<uint8_t>(x ^ y),
                              255};
        }
    }
    return image;
}

}  // namespace

TEST(Bitmap, RowsArePaddedToFourBytesAndReadBack) {
    for (const int width : {1, 2, 3, 4, 5}) {
        const Image image = Gradient(width, 3);
        const std::vector<uint8_t> bytes = EncodeBitmap(image);
        EXPECT_EQ(bytes.size(), 54U + 3 * static_cast<size_t>((3 * width + 3) / 4 * 4)) << width;
        EXPECT_EQ(bytes[54 + 1], 2 * 9) << "green of the lower left pixel comes first";
        EXPECT_EQ(DecodeBitmap(bytes, "x.bmp"), image) << width;
    }
}

TEST(Png, KeepsEveryPixelAndItsAlpha) {
    const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / "image_test.png";
    Image image = Gradient(17, 9);
    image.At(3, 3).a = 0;
    image.At(4, 3).a = 128;
    WritePng(path, image);
    EXPECT_EQ(ReadPng(path), image);
    WriteWholeFile(path, {'h', 'e', 'l', 'l', 'o'});
    EXPECT_THROW(ReadPng(path), ContentError);
}
