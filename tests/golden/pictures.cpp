#include "golden/pictures.h"

#include <cstdlib>

size_t DifferingPixels(const Image& a, const Image& b, int steps) {
    if (a.pixels.empty() || a.width != b.width || a.height != b.height) return SIZE_MAX;
    size_t count = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        const Rgba &p = a.pixels[i], &q = b.pixels[i];
        count += std::abs(p.r - q.r) > steps || std::abs(p.g - q.g) > steps || std::abs(p.b - q.b) > steps;
    }
    return count;
}

Image Halved(const Image& picture) {
    Image half(picture.width / 2, picture.height / 2);
    for (int y = 0; y < half.height; ++y)
        for (int x = 0; x < half.width; ++x) {
            const auto mean = [&](uint8_t Rgba::*channel) {
                int sum = 2;
                for (int i = 0; i < 4; ++i)
                    sum += picture.At(2 * x + i % 2, 2 * y + i / 2).*channel;
                return static_cast<uint8_t>(sum / 4);
            };
            half.At(x, y) = {mean(&Rgba::r), mean(&Rgba::g), mean(&Rgba::b), 255};
        }
    return half;
}
