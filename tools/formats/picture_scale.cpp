#include "formats/picture_scale.h"

#include "formats/texture_file.h"

#include <algorithm>

namespace {

// What part of a side's pixels a pixel of another size covers.
struct Cover {
    int first = 0;
    std::vector<uint64_t> weights;  // weights of the pixels from `first` on
};

std::vector<Cover> CoversOf(int from, int to) {
    std::vector<Cover> covers;
    for (int i = 0; i < to; ++i) {
        const int begin = i * from;  // in parts of a source pixel, `to` of which are one
        const int end = begin + from;
        Cover cover{begin / to, {}};
        for (int pixel = cover.first; pixel * to < end; ++pixel)
            cover.weights.push_back(
                static_cast<uint64_t>(std::min(end, (pixel + 1) * to) - std::max(begin, pixel * to)));
        covers.push_back(std::move(cover));
    }
    return covers;
}

Rgba MeanOf(const Image& image, const Cover& across, const Cover& down) {
    uint64_t red = 0, green = 0, blue = 0, alpha = 0, area = 0;
    for (size_t y = 0; y < down.weights.size(); ++y) {
        for (size_t x = 0; x < across.weights.size(); ++x) {
            const Rgba& pixel = image.At(across.first + static_cast<int>(x), down.first + static_cast<int>(y));
            const uint64_t weight = across.weights[x] * down.weights[y];
            area += weight;
            alpha += weight * pixel.a;
            red += weight * pixel.a * pixel.r;
            green += weight * pixel.a * pixel.g;
            blue += weight * pixel.a * pixel.b;
        }
    }
    if (alpha * 2 < area * 255) return {0, 0, 0, 0};
    const auto channel = [&](uint64_t sum) { return static_cast<uint8_t>((sum + alpha / 2) / alpha); };
    return {channel(red), channel(green), channel(blue), 255};
}

}  // namespace

int TextureSideFor(int side) {
    int size = TEXTURE_SIDE_MIN;
    // The boundary between two sizes is their geometric mean.
    while (size < TEXTURE_SIDE_MAX && int64_t{side} * side > int64_t{2} * size * size)
        size *= 2;
    return size;
}

Image Scaled(const Image& image, int width, int height) {
    const std::vector<Cover> across = CoversOf(image.width, width);
    const std::vector<Cover> down = CoversOf(image.height, height);
    Image scaled(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            scaled.At(x, y) = MeanOf(image, across[static_cast<size_t>(x)], down[static_cast<size_t>(y)]);
    }
    return scaled;
}

Image ScaledToTexture(const Image& image) {
    const int width = TextureSideFor(image.width);
    const int height = TextureSideFor(image.height);
    return width == image.width && height == image.height ? image : Scaled(image, width, height);
}
