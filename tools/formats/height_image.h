// Heights of a terrain: a PNG of one grey channel of 16 bits, its numbers taken as they are.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

constexpr uint32_t HEIGHT_IMAGE_SIDE_MAX = 129;  // 128 cells

struct HeightImage {
    int width = 0, height = 0;
    std::vector<uint16_t> values;  // rows from the top, each from the left

    uint16_t At(int x, int y) const { return values[static_cast<size_t>(y * width + x)]; }
};

// ContentError for a file that is no PNG, of another kind, smaller than 2 x 2 or larger than the limit, or damaged.
HeightImage ReadHeightImage(const std::filesystem::path& path);
