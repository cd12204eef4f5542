#include "formats/files.h"
#include "picc/blend.h"
#include "picc/picture.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const std::filesystem::path FOLDER = std::filesystem::path(testing::TempDir()) / "pictures";

PictureSources Sources() {
    return {FOLDER, FONT_FOLDER, FOLDER / "shots"};
}

Image Paint(const std::string& text) {
    WriteWholeFile(FOLDER / "test.toml", {text.begin(), text.end()});
    return PaintPicture(FOLDER / "test.toml", Sources());
}

// The bounds of everything that is not black.
Rectangle InkOf(const Image& image) {
    Rectangle ink{image.width, image.height, -1, -1};
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const Rgba& p = image.At(x, y);
            if (p.r + p.g + p.b < 200) continue;
            ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                   std::max(ink.bottom, y + 1)};
        }
    }
    return ink;
}

}  // namespace

TEST(PaintPicture, TextStandsWhereItIsPut) {
    const std::string item = "[[item]]\nkind = 'text'\nsize = 40\ncolour = '#ffffff'\nat = [320, 200]\ntext = 'HIM'\n";
    const Rectangle left = InkOf(Paint(item));
    const Rectangle centre = InkOf(Paint(item + "align = 'centre'\n"));
    const Rectangle right = InkOf(Paint(item + "align = 'right'\n"));
    EXPECT_NEAR(left.left, 323, 2);
    EXPECT_NEAR((centre.left + centre.right) / 2, 320, 2);
    EXPECT_NEAR(right.right, 317, 2);
    EXPECT_NEAR(left.bottom, 200, 1) << "capitals stand on the line";
    EXPECT_NEAR(left.bottom - left.top, 29, 1) << "capitals of this font are 0.73 em high";
}

TEST(PaintPicture, LaterItemsLieOnTopAndKeepToTheirRectangle) {
    const Image image =
        Paint("[[item]]\nkind = 'gradient'\ncolour = ['#000000', '#0000ff']\n[[item]]\nkind = 'panel'\n"
              "rect = [100, 100, 200, 150]\nradius = 10\nborder = 4\ncolour = '#ff0000'\nborder_colour = '#00ff00'\n");
    EXPECT_EQ(image.At(0, 0), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(image.At(639, 479), (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(image.At(150, 125), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(image.At(150, 101), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(image.At(100, 100).g, 0) << "the corner is round";
    EXPECT_EQ(image.At(99, 125).g, 0);
    EXPECT_EQ(image.At(200, 125).g, 0);
}

TEST(PaintPicture, TexturesRepeatAndMayBeEnlarged) {
    Image texture(8, 8, {0, 0, 0, 255});
    texture.At(1, 0) = {255, 255, 255, 255};
    WritePng(FOLDER / "dot.png", texture);
    const Image image = Paint("[[item]]\nkind = 'texture'\nmaterial = 'dot'\nzoom = 2\nrect = [10, 10, 60, 60]\n");
    for (const int x : {12, 13, 28, 29, 44})
        EXPECT_EQ(image.At(x, 10).r, 255) << x;
    for (const int x : {11, 14, 27, 30})
        EXPECT_EQ(image.At(x, 10).r, 0) << x;
    EXPECT_EQ(image.At(12, 26).r, 255);
}

TEST(PaintPicture, PicturesOfTheGameFillTheirRectangleFromTheirMiddle) {
    Image shot(8, 4, {255, 0, 0, 255});  // red at both ends, which a square does not show
    for (int x = 2; x < 6; ++x) {
        for (int y = 0; y < 4; ++y)
            shot.At(x, y) = {0, static_cast<uint8_t>(x < 4 ? 100 : 200), 0, 255};
    }
    WritePng(FOLDER / "shots/hall.png", shot);
    const std::string item = "[[item]]\nkind = 'picture'\nfile = 'hall'\n";
    const Image large = Paint(item + "rect = [10, 10, 90, 90]\n");
    EXPECT_EQ(large.At(10, 10), (Rgba{0, 100, 0, 255}));
    EXPECT_EQ(large.At(89, 89), (Rgba{0, 200, 0, 255}));
    EXPECT_EQ(large.At(90, 89).g, 0);
    const Image small = Paint(item + "rect = [10, 10, 11, 11]\nbrightness = 0.5\n");
    EXPECT_EQ(small.At(10, 10), (Rgba{0, 75, 0, 255})) << "the mean of all it shows";
    ExpectRefusal("there is no picture 'cellar'", [] { Paint("[[item]]\nkind = 'picture'\nfile = 'cellar'\n"); });
}

TEST(PaintPicture, FaultsNameTheLineAndTheRemedy) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"", "the picture is empty"},
        {"[[item]]\nkind = 'pannel'\n", "panel"},
        {"[[item]]\nkind = 'panel'\ncolour = '#000000'\nborders = 3\n", "test.toml:4: 'borders'"},
        {"[[item]]\nkind = 'gradient'\nrect = [10, 10, 10, 20]\ncolour = '#000000'\n", "'rect' is empty"},
        {"[[item]]\nkind = 'gradient'\n", "'colour' is missing"},
        {"[[item]]\nkind = 'texture'\nmaterial = 'no_such'\n", "there is no material 'no_such'"},
        {"[[item]]\nkind = 'text'\ntext = 'a'\nfont = 'Comic'\ncolour = '#ffffff'\n", "Comic.ttf"},
        {"[[item]]\nkind = 'text'\ntext = 'far too long'\nat = [600, 20]\ncolour = '#ffffff'\n", "leaves the picture"},
        {"[[item]]\nkind = 'text'\ntext = '中'\ncolour = '#ffffff'\n", "test.toml:1"},
        {"[[item]]\nkind = 'keys'\nkeys = ['F1', 'F2']\ntext = ['one']\ncolour = '#ffffff'\n", "has 2 rows"},
    };
    for (const auto& row : rows)
        ExpectRefusal(row.expected, [&] { Paint(row.text); });
}
