#include "texc/contact_sheet.h"

#include "records/light_facts.h"
#include "texc/palette.h"

namespace {

constexpr int SQUARE = 192;  // one and a half of the largest texture
constexpr int GAP = 8;
constexpr int PICTURES_A_ROW = 6;
constexpr Rgba BACKGROUND{255, 0, 255, 255};  // shows through holes
constexpr int UNCHANGED = NEUTRAL_LEVEL;      // level of light
constexpr std::array<int, 5> STRIP_LEVELS{16, 40, UNCHANGED, 88, 112};

using PaletteColour = std::array<uint8_t, 3>;  // 0..63

Rgba ToRgba(const PaletteColour& colour) {
    const auto byte = [&](size_t c) { return static_cast<uint8_t>(colour[c] * 4); };
    return {byte(0), byte(1), byte(2), 255};
}

// Below UNCHANGED the colour fades to the dark colour, above it to white; bright colours fade more.
Rgba Lit(const PaletteColour& colour, int level, const std::array<int, 3>& dark) {
    const int sum = colour[0] + colour[1] + colour[2];
    PaletteColour lit;
    for (size_t c = 0; c < 3; ++c) {
        const int value = colour[c];
        lit[c] = static_cast<uint8_t>(level <= UNCHANGED
                                          ? dark[c] + (value - dark[c]) * level / UNCHANGED
                                          : value + (63 - value) * sum * (level - UNCHANGED) / (3 * 63 * UNCHANGED));
    }
    return ToRgba(lit);
}

}  // namespace

Image ContactSheet(const std::vector<Image>& pictures) {
    const int count = static_cast<int>(pictures.size());
    const int rows = (count + PICTURES_A_ROW - 1) / PICTURES_A_ROW;
    Image sheet(PICTURES_A_ROW * (SQUARE + GAP) - GAP, rows * (SQUARE + GAP) - GAP, {24, 24, 24, 255});
    for (int i = 0; i < count; ++i) {
        const Image& picture = pictures[static_cast<size_t>(i)];
        const int left = i % PICTURES_A_ROW * (SQUARE + GAP);
        const int top = i / PICTURES_A_ROW * (SQUARE + GAP);
        for (int y = 0; y < SQUARE; ++y) {
            for (int x = 0; x < SQUARE; ++x) {
                const Rgba& pixel = picture.At(x % picture.width, y % picture.height);
                sheet.At(left + x, top + y) = pixel.a == 0 ? BACKGROUND : pixel;
            }
        }
    }
    return sheet;
}

Image ShowLit(const TextureFile& file, const TextureSlot& slot, const std::array<int, 3>& dark) {
    Image wanted(SQUARE, SQUARE, {0, 0, 0, 0});
    for (int y = 0; y < SQUARE; ++y) {
        for (int x = 0; x < SQUARE; ++x) {
            const uint8_t texel = file.Texel(slot, x % slot.width, y % slot.height);
            const int level = STRIP_LEVELS[static_cast<size_t>(x) * STRIP_LEVELS.size() / SQUARE];
            if (texel != 0) wanted.At(x, y) = Lit(file.palette[texel], level, dark);
        }
    }
    const std::vector<uint8_t> shown = ToPalette(wanted, file.palette);
    for (size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] != 0) wanted.pixels[i] = ToRgba(file.palette[shown[i]]);
    }
    return wanted;
}
