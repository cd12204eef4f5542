#include "picc/blend.h"

#include <algorithm>
#include <cmath>

Rgba MixColours(const Rgba& a, const Rgba& b, int part) {
    const auto mix = [part](int x, int y) { return static_cast<uint8_t>((x * (255 - part) + y * part + 127) / 255); };
    return {mix(a.r, b.r), mix(a.g, b.g), mix(a.b, b.b), 255};
}

Rgba Scaled(const Rgba& colour, int part) {
    const auto scale = [part](int x) { return static_cast<uint8_t>(std::clamp(x * part / 256, 0, 255)); };
    return {scale(colour.r), scale(colour.g), scale(colour.b), 255};
}

Rgba Ramp(const std::vector<Rgba>& colours, int place, int length) {
    if (colours.size() == 1 || length < 2) return colours[0];
    const int steps = static_cast<int>(colours.size()) - 1;
    const int at = std::clamp(place, 0, length - 1) * steps * 255 / (length - 1);
    const int index = std::min(at / 255, steps - 1);
    return MixColours(colours[static_cast<size_t>(index)], colours[static_cast<size_t>(index) + 1], at - index * 255);
}

void Blend(Image& image, int x, int y, const Rgba& colour, int part) {
    if (x < 0 || y < 0 || x >= image.width || y >= image.height) return;
    image.At(x, y) = MixColours(image.At(x, y), colour, part);
}

void BlendShape(Image& image, const Coverage& shape, const Rectangle& area, const std::vector<Rgba>& colours, int part,
                int dx, int dy) {
    for (int y = 0; y < image.height; ++y) {
        const Rgba colour = Ramp(colours, y - dy - area.top, area.bottom - area.top);
        for (int x = 0; x < image.width; ++x) {
            if (const int cover = shape.At(x - dx, y - dy)) Blend(image, x, y, colour, cover * part / 255);
        }
    }
}

Coverage RoundedBox(int width, int height, const Rectangle& box, int radius, int inside) {
    Coverage shape(width, height);
    const auto corner = static_cast<float>(std::max(radius - inside, 0));
    for (int y = box.top + inside; y < box.bottom - inside; ++y) {
        for (int x = box.left + inside; x < box.right - inside; ++x) {
            const float dx =
                corner - static_cast<float>(std::min(x - box.left - inside, box.right - inside - 1 - x)) - 0.5f;
            const float dy =
                corner - static_cast<float>(std::min(y - box.top - inside, box.bottom - inside - 1 - y)) - 0.5f;
            const float beyond = dx > 0 && dy > 0 ? std::sqrt(dx * dx + dy * dy) - corner : -1;
            shape.Add(x, y, static_cast<uint8_t>(std::clamp(0.5f - beyond, 0.0f, 1.0f) * 255));
        }
    }
    return shape;
}

Image Shrink(const Image& image, int factor) {
    Image small(image.width / factor, image.height / factor);
    for (int y = 0; y < small.height; ++y) {
        for (int x = 0; x < small.width; ++x) {
            int red = 0, green = 0, blue = 0;
            for (int i = 0; i < factor * factor; ++i) {
                const Rgba& pixel = image.At(x * factor + i % factor, y * factor + i / factor);
                red += pixel.r;
                green += pixel.g;
                blue += pixel.b;
            }
            const auto mean = [&](int sum) { return static_cast<uint8_t>(sum / (factor * factor)); };
            small.At(x, y) = {mean(red), mean(green), mean(blue), 255};
        }
    }
    return small;
}
