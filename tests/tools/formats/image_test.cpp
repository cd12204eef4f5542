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

TEST(Bitmap, HeaderIsThatOfAPlain24BitPicture) {
    const std::vector<uint8_t> bytes = EncodeBitmap(Gradient(640, 480));
    ASSERT_EQ(bytes.size(), 54U + 640 * 480 * 3);
    ByteReader in(bytes, "x.bmp");
    EXPECT_EQ(in.U16(), 0x4D42);
    EXPECT_EQ(in.U32(), bytes.size());
    in.Take(4);
    EXPECT_EQ(in.U32(), 54U) << "offset of the pixels";
    EXPECT_EQ(in.U32(), 40U) << "size of the picture header";
    EXPECT_EQ(in.I32(), 640);
    EXPECT_EQ(in.I32(), 480) << "positive: the bottom row comes first";
    EXPECT_EQ(in.U16(), 1);
    EXPECT_EQ(in.U16(), 24);
    const uint8_t* bottomLeft = bytes.data() + 54;
    EXPECT_EQ(bottomLeft[1], static_cast<uint8_t>(479 * 9)) << "blue, green, red of the lower left pixel";
    EXPECT_EQ(bottomLeft[2], 0);
}

TEST(Bitmap, RowsArePaddedToFourBytesAndReadBack) {
    for (const int width : {1, 2, 3, 4, 5}) {
        const Image image = Gradient(width, 3);
        EXPECT_EQ(EncodeBitmap(image).size() % 4, 2U) << width;
        EXPECT_EQ(DecodeBitmap(EncodeBitmap(image), "x.bmp"), image) << width;
    }
}

TEST(Bitmap, DamagedFilesAreRefused) {
    const std::vector<uint8_t> good = EncodeBitmap(Gradient(5, 4));
    for (size_t size = 0; size < good.size(); ++size) {
        EXPECT_THROW(DecodeBitmap({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)}, "x"), ContentError);
    }
    for (const size_t offset : {size_t{0}, size_t{10}, size_t{14}, size_t{21}, size_t{28}, size_t{30}}) {
        std::vector<uint8_t> bad = good;
        bad[offset] = 0x7F;
        EXPECT_THROW(DecodeBitmap(bad, "x"), ContentError) << offset;
    }
}

TEST(Png, KeepsEveryPixelAndItsAlpha) {
    const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / "image_test.png";
    Image image = Gradient(17, 9);
    image.At(3, 3).a = 0;
    image.At(4, 3).a = 128;
    WritePng(path, image);
    EXPECT_EQ(ReadPng(path), image);
}

TEST(Png, WhatIsNoPngIsRefusedByName) {
    const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / "no_picture.png";
    WriteWholeFile(path, {'h', 'e', 'l', 'l', 'o'});
    try {
        ReadPng(path);
        FAIL();
    } catch (const ContentError& error) {
        EXPECT_NE(std::string(error.what()).find("no_picture.png"), std::string::npos);
    }
}
