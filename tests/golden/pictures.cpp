#include "golden/pictures.h"

#include <png.h>

#include <cstdlib>

Pixels ReadPng(const std::filesystem::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Pixels pixels;
    if (!png_image_begin_read_from_file(&image, file.c_str())) return pixels;
    image.format = PNG_FORMAT_RGB;
    pixels = {image.width, image.height, std::vector<uint8_t>(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, pixels.rgb.data(), 0, nullptr)) return {};
    return pixels;
}

void WritePng(const std::filesystem::path& file, const Pixels& pixels) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = pixels.width;
    image.height = pixels.height;
    image.format = PNG_FORMAT_RGB;
    png_image_write_to_file(&image, file.c_str(), 0, pixels.rgb.data(), 0, nullptr);
}

size_t DifferingPixels(const Pixels& a, const Pixels& b, int steps) {
    if (a.rgb.empty() || a.width != b.width || a.height != b.height) return SIZE_MAX;
    size_t count = 0;
    for (size_t i = 0; i < a.rgb.size(); i += 3) {
        bool differs = false;
        for (size_t k = i; k < i + 3; ++k)
            differs |= std::abs(a.rgb[k] - b.rgb[k]) > steps;
        count += differs;
    }
    return count;
}

Pixels Halved(const Pixels& pixels) {
    Pixels half{pixels.width / 2, pixels.height / 2, {}};
    for (uint32_t y = 0; y < half.height; ++y)
        for (uint32_t x = 0; x < half.width; ++x)
            for (int k = 0; k < 3; ++k)
                half.rgb.push_back(
                    static_cast<uint8_t>((pixels.At(2 * x, 2 * y)[k] + pixels.At(2 * x + 1, 2 * y)[k] +
                                          pixels.At(2 * x, 2 * y + 1)[k] + pixels.At(2 * x + 1, 2 * y + 1)[k] + 2) /
                                         4));
    return half;
}
