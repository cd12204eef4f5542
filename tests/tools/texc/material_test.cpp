#include "formats/depfile.h"
#include "formats/files.h"
#include "support/content_error.h"
#include "texc/material.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <algorithm>

namespace {

std::filesystem::path Recipe(const std::string& name, const std::string& text) {
    const std::filesystem::path path = std::filesystem::path(testing::TempDir()) / "recipes" / (name + ".toml");
    WriteWholeFile(path, {text.begin(), text.end()});
    return path;
}

Image Paint(const std::string& text) {
    return PaintMaterial(Recipe("test", text)).picture;
}

void Add(uint32_t& hash, const Image& image) {
    for (const Rgba& p : image.pixels) {
        for (const uint8_t byte : {p.r, p.g, p.b, p.a})
            hash = (hash ^ byte) * 16777619U;
    }
}

// Share of pixels that differ by more than rounding when `moved` is `image` pushed right and down by dx, dy.
double DifferenceAfterMove(const Image& image, const Image& moved, int dx, int dy) {
    int different = 0;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const Rgba& a = image.At(x, y);
            const Rgba& b = moved.At((x + dx) % image.width, (y + dy) % image.height);
            if (std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)}) > 2) ++different;
        }
    }
    return static_cast<double>(different) / static_cast<double>(image.pixels.size());
}

const char* const PATTERNS[] = {
    "pattern = 'noise'\ncells = [3, 5]",
    "pattern = 'stones'\ncells = [4, 3]\njitter = 1.0",
    "pattern = 'bricks'\ncolumns = 3\nrows = 4\njitter = 0.8\nrow_jitter = 0.6\nscattered = true",
    "pattern = 'bricks'\ncolumns = 2\nrows = 4\nupright = true",
    "pattern = 'scatter'\ncells = [5, 5]\nradius = [2, 6]\nstretch = 0.3",
    "pattern = 'discs'\nat = [[0, 0], [60, 30]]\nradius = 9",
    "pattern = 'stripes'\ncount = [2, 1]",
    "pattern = 'box'\nrepeat = [16, 16]\nrect = [2, 2, 14, 14]",
};

std::string RecipeOf(const std::string& pattern) {
    return "size = [64, 64]\nrelief = 0\nhollows = 0\n[[layer]]\ncolour = ['#000000', '#ffffff']\n" + pattern;
}

}  // namespace

// Pictures decide palettes and texels of every level, so all compilers must agree on them to the last bit.
TEST(Material, IsNotPaintedAgainForTheMarksInItsFoldersName) {
    EXPECT_EQ(DepfileLine("a b.png", {"my games (1)/c#$.toml", "d"}), "a\\ b.png: my\\ games\\ (1)/c\\#$$.toml d\n");
}

TEST(PaintMaterial, GivesTheSamePixelsEverywhere) {
    uint32_t hash = 2166136261U;
    for (const char* const pattern : PATTERNS)
        Add(hash, Paint(RecipeOf(pattern)));
    Add(hash, Paint("size = [64, 32]\nseed = 3\n"
                    "[[layer]]\npattern = 'stones'\ncells = [5, 4]\nbevel = 3\nrounded = true\nvary = 0.3\nraise = 3\n"
                    "colour = ['#804020', '#a0a020']\n"
                    "[[layer]]\npattern = 'noise'\ncells = [4, 4]\nper_cell = true\nridged = true\nwobble = 3\n"
                    "mode = 'shade'\ncolour = ['#404040', '#c0c0c0']\n"
                    "[[layer]]\npattern = 'polygon'\nmirror = 'eight'\npoints = [[32, 16], [40, 16], [36, 20]]\n"
                    "mode = 'glow'\ncolour = '#ff0000'\n"
                    "[[layer]]\npattern = 'edges'\ncolour = '#ffffff'\n"
                    "  [[layer.mask]]\n  pattern = 'gradient'\n  to = [64, 0]\n"));
    EXPECT_EQ(hash, 181180275U) << "renew this number when a pattern is changed on purpose";
}

TEST(PaintMaterial, PatternsMeetThemselvesAtTheBorders) {
    for (const std::string pattern : PATTERNS) {
        const Image image = Paint(RecipeOf(pattern));
        const Image moved = Paint(RecipeOf("origin = [24, 40]\n" + pattern));
        EXPECT_LT(DifferenceAfterMove(image, moved, 24, 40), 0.01) << pattern;
        EXPECT_GT(DifferenceAfterMove(image, moved, 0, 0), 0.05) << pattern << ": the pattern did not move at all";
    }
}

TEST(PaintMaterial, ABaseIsPaintedFirstAndCountsAsASource) {
    Recipe("base", "size = [16, 16]\n[[layer]]\npattern = 'fill'\ncolour = '#ff0000'\n");
    const PaintedMaterial material = PaintMaterial(
        Recipe("variant", "base = 'base'\n[[layer]]\npattern = 'box'\nrect = [0, 0, 8, 16]\ncolour = '#00ff00'\n"));
    EXPECT_EQ(material.picture.At(2, 2), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(material.picture.At(12, 2), (Rgba{255, 0, 0, 255}));
    ASSERT_EQ(material.sources.size(), 2U);
    EXPECT_EQ(material.sources[0].filename(), "base.toml");
}

// Painted again for every layer, they would be 10,000 pictures.
TEST(PaintMaterial, EachRecipeIsPaintedOnceHoweverOftenItIsShown) {
    std::filesystem::path last = Recipe("shown4", "size = [8, 8]\n[[layer]]\npattern = 'fill'\ncolour = '#123456'\n");
    for (int level = 3; level >= 0; --level) {
        std::string text = "size = [8, 8]\n";
        for (int i = 0; i < 10; ++i)
            text += fmt::format("[[layer]]\npattern = 'material'\nmaterial = '{}'\n", last.stem().string());
        last = Recipe(fmt::format("shown{}", level), text);
    }
    EXPECT_EQ(PaintMaterial(last).sources.size(), 5U);
}

TEST(PaintMaterial, RecipeFaultsNameTheLineAndTheRemedy) {
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"size = [100, 64]\n", "8, 16, 32, 64 or 128"},
        {"size = [256, 64]\n", "8, 16, 32, 64 or 128"},
        {"size = [64, 64]\n", "has no layers"},
        {"[[layer]]\npattern = 'brick'\n", "bricks"},
        {"[[layer]]\npattern = 'fill'\n", "test.toml:1: the layer has no colour"},
        {"[[layer]]\npattern = 'fill'\ncolour = '#000000'\ngap = 3\n", "test.toml:4: 'gap'"},
        {"[[layer]]\npattern = 'fill'\ncolour = '#000000'\n[[layer.mask]]\npattern = 'noise'\nopacity = 1\n",
         "test.toml:6"},
        {"[[layer]]\npattern = 'noise'\ncells = [0, 4]\ncolour = '#000000'\n", "'cells'"},
        {"[[layer]]\npattern = 'polygon'\npoints = [[1, 2], [3]]\ncolour = '#000000'\n", "'points'"},
        {"[[layer]]\npattern = 'picture'\nfile = 'no_such.png'\n", "no_such.png"},
        {"[[layer]]\npattern = 'picture'\nfile = '/dev/zero'\n", "/dev/zero: is no regular file"},
        {"base = 'test'\n", "circle"},
        {"[[layer]]\npattern = 'fill'\ncolour = '#000000'\n[[layer.mask]]\npattern = 'material'\nmaterial = 'test'\n",
         "circle"},
    };
    for (const auto& row : rows)
        ExpectRefusal(row.expected, [&] { Paint(row.text); });
}
