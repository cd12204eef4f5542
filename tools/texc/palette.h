// One level's 256 colours.
//   0        black; as a texel it is a hole, so pictures never use it for a visible black
//   1..252   chosen from the level's pictures and from copies of them lit as the game lights them
//   253      unused black
//   254      the ground colour, which fills the lower half of the software picture where nothing is drawn
//   255      white
#pragma once

#include "formats/image.h"
#include "formats/texture_file.h"

#include <vector>

using Palette = decltype(TextureFile::palette);

constexpr int PALETTE_FIRST_CHOSEN = 1;
constexpr int PALETTE_LAST_CHOSEN = 252;
constexpr int PALETTE_WHITE = 255;

struct PaletteWishes {
    struct Picture {
        const Image* image;
        int weight;  // how often each texel counts
    };
    std::vector<Picture> pictures;
    Rgba dark, ground;  // what unlit surfaces fade to; see GROUND_COLOUR
};

int SixBits(int byte);  // 0..255 as one of the 64 steps of a palette

Palette ChoosePalette(const PaletteWishes& wishes);

// Nearest colours with the game's own measure. Visible pixels become 1..255, holes 0.
std::vector<uint8_t> ToPalette(const Image& image, const Palette& palette);
