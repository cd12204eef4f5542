// True-colour pictures in memory, and PNG and Windows bitmap files of them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct Rgba {
    uint8_t r = 0, g = 0, b = 0, a = 255;
    bool operator==(const Rgba&) const = default;
};

struct Image {
    int width = 0, height = 0;
    std::vector<Rgba> pixels;  // rows from the top, each from the left

    Image() = default;
    Image(int w, int h, Rgba fill = {})
        : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), fill) {}
    size_t Index(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
    Rgba& At(int x, int y) { return pixels[Index(x, y)]; }
    const Rgba& At(int x, int y) const { return pixels[Index(x, y)]; }
    bool operator==(const Image&) const = default;
};

// Any PNG becomes 8-bit RGBA; at most 4096 x 4096. ContentError names the file.
Image ReadPng(const std::filesystem::path& path);
void WritePng(const std::filesystem::path& path, const Image& image);

// The front end's pictures: 24 bits a pixel, bottom row first, no compression, 54 bytes of header. Alpha is dropped.
std::vector<uint8_t> EncodeBitmap(const Image& image);
Image DecodeBitmap(std::vector<uint8_t> content, const std::string& fileName);  // only what EncodeBitmap writes
