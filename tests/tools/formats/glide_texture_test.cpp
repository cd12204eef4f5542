#include "formats/glide_texture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

constexpr Rgba HOLE{9, 9, 9, 0};

int SolidTexels(const Image& image) {
    const auto isSolid = [](const Rgba& pixel) { return pixel.a != 0; };
    return static_cast<int>(std::count_if(image.pixels.begin(), image.pixels.end(), isSolid));
}

TEST(GlideTexture, HoldsAHeaderAndTexelsWithAlphaInTheHoles) {
    Image picture(2, 1);
    picture.pixels = {{255, 0, 132, 255}, HOLE};
    const std::vector<uint8_t> bytes = EncodeGlideTexture({picture, Image(1, 1, {0, 255, 0, 255})});
    const std::string header = "3df v1.1\nargb1555\nlod range: 1 2\naspect ratio: 2 1\n";
    ASSERT_EQ(bytes.size(), header.size() + 6);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(header.size())), header);
    EXPECT_EQ(std::vector<uint8_t>(bytes.end() - 6, bytes.end()),
              (std::vector<uint8_t>{0x7C, 0x10, 0x84, 0x21, 0x03, 0xE0}));
    std::vector<uint8_t> later = bytes;
    later.insert(later.begin() + 8, '0');  // version 1.10
    EXPECT_EQ(DecodeGlideTexture(later, "00.3df").width, 2);
}

TEST(GlideTexture, LevelsAreAveragesOfLightAndHolesHaveNone) {
    Image picture(8, 2);
    for (int x = 0; x < 8; ++x) {
        picture.At(x, 0) = {255, 255, 255, 255};
        picture.At(x, 1) = {0, 0, 0, 255};
    }
    picture.At(0, 1) = picture.At(1, 0) = picture.At(1, 1) = HOLE;
    const std::vector<Image> levels = MakeMipLevels(picture);
    ASSERT_EQ(levels.size(), 4u);
    EXPECT_EQ(levels[3].width, 1);
    EXPECT_EQ(levels[1].At(0, 0).r, 255) << "holes darken nothing";
    EXPECT_EQ(levels[1].At(1, 0).r, 188) << "half of white's light";
    EXPECT_EQ(MakeMipLevels(Image(4, 4, {77, 78, 79, 255})).back().pixels[0], (Rgba{77, 78, 79, 255}));
}

TEST(GlideTexture, EachLevelIsAsSolidAsThePicture) {
    Image bars(64, 64, HOLE);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if ((x * 7 + y * 3) % 64 < 20) bars.At(x, y) = {200, 100, 50, 255};
    const std::vector<Image> levels = MakeMipLevels(bars);
    const double part = SolidTexels(bars) / 4096.0;
    for (size_t i = 1; i < 4; ++i)
        EXPECT_NEAR(SolidTexels(levels[i]) / static_cast<double>(levels[i].pixels.size()), part, 0.1) << i;
    EXPECT_EQ(SolidTexels(MakeMipLevels(Image(8, 8, HOLE))[1]), 0);
}

}  // namespace
