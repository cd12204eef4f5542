#include "core/png.h"

#include <png.h>

#include <vector>

bool WritePng(const std::string& file, const Picture& picture, std::string& error) {
    const auto width = static_cast<size_t>(picture.width);
    const auto height = static_cast<size_t>(picture.height);
    std::vector<uint8_t> rgb;
    rgb.reserve(width * height * 3);
    for (size_t i = 0; i < width * height; ++i)
        for (int shift = 16; shift >= 0; shift -= 8)
            rgb.push_back(static_cast<uint8_t>(picture.pixels[i] >> shift));

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, file.c_str(), 0, rgb.data(), 0, nullptr)) return true;
    error = image.message;
    return false;
}
