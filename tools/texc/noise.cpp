#include "texc/noise.h"

#include <initializer_list>

namespace {

// Twelve directions, so that no axis stands out.
constexpr float GRADIENTS[12][2] = {{1, 0},           {0.866f, 0.5f},  {0.5f, 0.866f},  {0, 1},
                                    {-0.5f, 0.866f},  {-0.866f, 0.5f}, {-1, 0},         {-0.866f, -0.5f},
                                    {-0.5f, -0.866f}, {0, -1},         {0.5f, -0.866f}, {0.866f, -0.5f}};

float Corner(uint32_t seed, int column, int row, float dx, float dy) {
    const float* gradient = GRADIENTS[Hash(seed, static_cast<uint32_t>(column), static_cast<uint32_t>(row)) % 12];
    return gradient[0] * dx + gradient[1] * dy;
}

float Fade(float t) {
    return t * t * t * (t * (t * 6 - 15) + 10);
}

float BoilingNoise(uint32_t seed, float x, float y, int columns, int rows, const FractalShape& shape) {
    if (shape.boil == 0) return GradientNoise(seed, x, y, columns, rows);
    const float depth = shape.phase * static_cast<float>(shape.boil);
    const int slice = FloorInt(depth);
    const auto at = [&](int index) {
        return GradientNoise(Hash(seed, static_cast<uint32_t>(WrapInt(index, shape.boil))), x, y, columns, rows);
    };
    return Mix(at(slice), at(slice + 1), Fade(depth - static_cast<float>(slice)));
}

}  // namespace

uint32_t Hash(uint32_t seed, uint32_t a, uint32_t b, uint32_t c) {
    uint32_t h = seed + 0x9E3779B9U;
    for (const uint32_t word : {a, b, c}) {
        h ^= word * 0x85EBCA6BU;
        h = (h << 13) | (h >> 19);
        h = h * 5 + 0xE6546B64U;
        h ^= h >> 15;
        h *= 0xC2B2AE35U;
    }
    return h ^ (h >> 16);
}

float HashUnit(uint32_t hash) {
    return static_cast<float>(hash >> 8) / 16777216.0f;
}

float Smooth(float t) {
    const float clamped = Clamp01(t);
    return clamped * clamped * (3 - 2 * clamped);
}

float SmoothStep(float low, float high, float value) {
    if (low == high) return value < low ? 0.0f : 1.0f;
    return Smooth((value - low) / (high - low));
}

int FloorInt(float value) {
    const int whole = static_cast<int>(value);
    return static_cast<float>(whole) > value ? whole - 1 : whole;
}

int WrapInt(int value, int period) {
    const int rest = value % period;
    return rest < 0 ? rest + period : rest;
}

float WrapFloat(float value, float period) {
    const float rest = value - static_cast<float>(FloorInt(value / period)) * period;
    return rest < 0 || rest >= period ? 0 : rest;
}

float GradientNoise(uint32_t seed, float x, float y, int columns, int rows) {
    const int column = FloorInt(x);
    const int row = FloorInt(y);
    const float dx = x - static_cast<float>(column);
    const float dy = y - static_cast<float>(row);
    const int left = WrapInt(column, columns);
    const int right = WrapInt(column + 1, columns);
    const int top = WrapInt(row, rows);
    const int bottom = WrapInt(row + 1, rows);
    const float across = Fade(dx);
    const float upper = Mix(Corner(seed, left, top, dx, dy), Corner(seed, right, top, dx - 1, dy), across);
    const float lower =
        Mix(Corner(seed, left, bottom, dx, dy - 1), Corner(seed, right, bottom, dx - 1, dy - 1), across);
    return Mix(upper, lower, Fade(dy));
}

float FractalNoise(uint32_t seed, float x, float y, const FractalShape& shape) {
    float sum = 0;
    float total = 0;
    float strength = 1;
    int columns = shape.columns;
    int rows = shape.rows;
    for (int octave = 0; octave < shape.octaves; ++octave) {
        const uint32_t octaveSeed = Hash(seed, static_cast<uint32_t>(octave), 77);
        const float n = BoilingNoise(octaveSeed, x * static_cast<float>(columns), y * static_cast<float>(rows), columns,
                                     rows, shape);
        // Crests of 1 where the noise crosses 0.
        sum += strength * (shape.ridged ? 1 - (n < 0 ? -n : n) * 2.2f : n * 1.5f);
        total += strength;
        strength *= shape.roughness;
        columns *= 2;
        rows *= 2;
    }
    return Clamp01(shape.ridged ? sum / total : 0.5f + 0.5f * sum / total * 1.25f);
}
