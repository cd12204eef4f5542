// Pictures as PNG files.
#pragma once

#include "machine/machine.h"

#include <cstdint>
#include <string>
#include <vector>

// RGB, 8 bits a channel, the same bytes for the same picture. False: `error` says why.
bool WritePng(const std::string& file, const Picture& picture, std::string& error);

struct PngPixels {
    std::vector<uint32_t> pixels;  // 0xAARRGGBB, rows top to bottom without gaps; empty: the file cannot be read
    int width = 0, height = 0;
};

PngPixels ReadPng(const std::string& file);
