// Pictures as tests compare them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

struct Pixels {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb;

    const uint8_t* At(uint32_t x, uint32_t y) const { return &rgb[3 * (y * width + x)]; }
};

Pixels ReadPng(const std::filesystem::path& file);  // empty: there is none
void WritePng(const std::filesystem::path& file, const Pixels& pixels);
// Pixels of which a channel differs by more than `steps`; SIZE_MAX: the sizes differ.
size_t DifferingPixels(const Pixels& a, const Pixels& b, int steps);
Pixels Halved(const Pixels& pixels);  // the means of two by two
