// The picture a recipe paints on: colour, height and opacity of every sample. Samples lie SAMPLES to a texel in each
// direction; lengths in recipes are texels.
#pragma once

#include "formats/image.h"

#include <array>
#include <cstdint>
#include <vector>

using Colour = std::array<float, 3>;  // red, green, blue, 0..1 (may leave that range until it is written)

constexpr int SAMPLES = 2;

struct Canvas {
    int width, height;  // texels
    int columns, rows;  // samples
    std::vector<Colour> colour;
    std::vector<float> tall;     // texels above the ground of the picture
    std::vector<float> opacity;  // 0 = a hole, 1 = solid
    std::vector<uint32_t> cell;  // which brick, board or stone was drawn there last

    Canvas(int texelWidth, int texelHeight);
    size_t Index(int column, int row) const {  // wraps around at the borders, as the picture repeats
        const auto wrap = [](int value, int period) { return static_cast<size_t>((value % period + period) % period); };
        return wrap(row, rows) * static_cast<size_t>(columns) + wrap(column, columns);
    }
};

// Average of `field` over a square of samples, radius in samples, wrapping around.
std::vector<float> BoxBlur(const Canvas& canvas, const std::vector<float>& field, int radius);

struct Finish {
    float relief = 1;       // how strongly slopes toward the upper left catch the light
    float hollows = 0.25f;  // how much places are darkened that lie lower than their surroundings
    float contrast = 1;     // contrast about middle grey
    float brightness = 1;
};
Image Develop(const Canvas& canvas, const Finish& finish);  // light the relief, average the samples of each texel
