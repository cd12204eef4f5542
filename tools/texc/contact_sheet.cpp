#include "texc/contact_sheet.h"

namespace {

constexpr int SQUARE = 192;  // one and a half of the largest texture
constexpr int GAP = 8;
constexpr int PICTURES_A_ROW = 6;
constexpr Rgba BACKGROUND{255, 0, 255, 255};  // shows through holes

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

Image ShowTexture(const TextureFile& file, const TextureSlot& slot) {
    Image image(slot.width, slot.height);
    for (int y = 0; y < slot.height; ++y) {
        for (int x = 0; x < slot.width; ++x) {
            const uint8_t texel = file.Texel(slot, x, y);
            const auto& colour = file.palette[texel];
            const auto byte = [&](size_t c) { return static_cast<uint8_t>(colour[c] * 4); };
            image.At(x, y) = {byte(0), byte(1), byte(2), static_cast<uint8_t>(texel == 0 ? 0 : 255)};
        }
    }
    return image;
}
