#include "machine/png.h"

#include <png.h>

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

// Removes a file that was not written in full; but a device that was named stays.
void RemoveHalfAPicture(const std::string& file) {
    std::error_code ignored;
    if (std::filesystem::symlink_status(file, ignored).type() == std::filesystem::file_type::regular)
        std::filesystem::remove(file, ignored);
}

}  // namespace

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
    errno = 0;
    std::FILE* stream = std::fopen(file.c_str(), "wb");
    const bool written =
        stream && png_image_write_to_stdio(&image, stream, 0, rgb.data(), 0, nullptr) && std::fflush(stream) == 0;
    error = errno != 0 ? std::strerror(errno) : image.message;
    if (stream) std::fclose(stream);
    if (stream && !written) RemoveHalfAPicture(file);
    return written;
}

PngPixels ReadPng(const std::string& file) {
    static_assert(std::endian::native == std::endian::little, "the bytes B, G, R, A are 0xAARRGGBB");
    PngPixels read;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, file.c_str())) return read;
    image.format = PNG_FORMAT_BGRA;
    read.pixels.resize(size_t{image.width} * image.height);
    if (!png_image_finish_read(&image, nullptr, read.pixels.data(), 0, nullptr)) return {};
    read.width = static_cast<int>(image.width);
    read.height = static_cast<int>(image.height);
    return read;
}
