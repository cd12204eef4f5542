#include "boards/cpu/triangle.h"

#include <bit>

namespace {

// The nearest whole number, ties to even: the sum has no room for a fraction.
int32_t Round(float value) {
    return static_cast<int32_t>((double{value} + 6755399441055744.0) - 6755399441055744.0);
}

// Not a number gives the second one, as the vector instructions do.
float Least(float a, float b) {
    return a < b ? a : b;
}

float Greatest(float a, float b) {
    return a > b ? a : b;
}

uint32_t Depth(float oow) {
    const auto bits = std::bit_cast<int32_t>(oow);
    return bits <= 0 ? 0xFFFF : static_cast<uint32_t>(std::clamp((0x3F800000 - bits + 0x7FF) >> 11, 0, 0xFFFF));
}

struct TexturePoint {
    float s, t;
    int32_t lod;
};

TexturePoint PointAt(const CpuTexture& texture, const Triangle& triangle, const float* values) {
    const float w = 1.0F / values[VALUE_OOW];
    const float s = values[VALUE_SOW] * w;
    const float t = values[VALUE_TOW] * w;
    const auto squaredLength = [&](const float* step) {
        const float ds = (step[VALUE_SOW] - s * step[VALUE_OOW]) * w;
        const float dt = (step[VALUE_TOW] - t * step[VALUE_OOW]) * w;
        return ds * ds + dt * dt;
    };
    const float longer = Greatest(squaredLength(triangle.columnStep), squaredLength(triangle.rowStep));
    const int32_t exponent = (std::bit_cast<int32_t>(longer) >> 23 & 0xFF) - 127;
    return {s, t, std::clamp((exponent + 1) >> 1, texture.firstLod, texture.lastLod)};
}

// 1/128 texels, of which the upper left one of the four taps is at the whole part.
int32_t TapPosition(float coordinate, float scale) {
    return Round(Greatest(Least(coordinate * scale, TEXEL_LIMIT), -TEXEL_LIMIT) - 64.0F);
}

int32_t Limit(int32_t tap, int32_t last, bool wraps) {
    return wraps ? tap & last : std::clamp(tap, 0, last);
}

uint32_t Channel(uint32_t pixel, int shift) {
    return pixel >> shift & 0xFF;
}

// round(a x b / 2^15)
int32_t Scale(int32_t a, int32_t b) {
    return (a * b + 0x4000) >> 15;
}

uint32_t Sample(const FillState& state, const TexturePoint& point) {
    const MipLevel& level = state.texture->levels[point.lod];
    const int32_t u = TapPosition(point.s, level.scaleS);
    const int32_t v = TapPosition(point.t, level.scaleT);
    const int32_t left = Limit(u >> 7, level.lastColumn, state.wrapS);
    const int32_t right = Limit((u >> 7) + 1, level.lastColumn, state.wrapS);
    const uint32_t* upper = level.texels + (Limit(v >> 7, level.lastRow, state.wrapT) << level.rowShift);
    const uint32_t* lower = level.texels + (Limit((v >> 7) + 1, level.lastRow, state.wrapT) << level.rowShift);
    uint32_t pixel = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const auto between = [&](const uint32_t* row) {
            const auto from = static_cast<int32_t>(Channel(row[left], shift));
            return (from << 7) + (static_cast<int32_t>(Channel(row[right], shift)) - from) * (u & 127);
        };
        const int32_t first = between(upper);
        const int32_t value = first + Scale(between(lower) - first, (v & 127) << 8);
        pixel |= static_cast<uint32_t>((value + 64) >> 7) << shift;
    }
    return pixel;
}

uint32_t VertexChannel(float value) {
    return static_cast<uint32_t>(Round(Least(Greatest(value, 0.0F), 255.0F)));
}

uint32_t Combine(uint32_t texel, const float* values, uint32_t addMask) {
    const uint32_t added = VertexChannel(values[VALUE_ALPHA]) & addMask;
    const auto channel = [&](Value value, int shift) {
        const uint32_t scaled = Channel(texel, shift) * (VertexChannel(values[value]) + 1) >> 8;
        return std::min(scaled + added, 255U) << shift;
    };
    return channel(VALUE_RED, 16) | channel(VALUE_GREEN, 8) | channel(VALUE_BLUE, 0);
}

uint32_t ApplyFog(const FillState& state, uint32_t colour, uint32_t depth) {
    const int32_t entry = state.fog[depth >> 10];
    const int32_t part = (entry & 0xFF) * 256 + (entry >> 16) * static_cast<int32_t>(depth >> 2 & 0xFF);
    const auto share = static_cast<int32_t>(std::min(static_cast<uint32_t>(part) * 32897U >> 16, 32767U));
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto from = static_cast<int32_t>(Channel(colour, shift));
        const auto to = static_cast<int32_t>(Channel(state.fogColour, shift));
        result |= static_cast<uint32_t>(from + Scale(to - from, share)) << shift;
    }
    return result;
}

void FillPixel(const FillState& state, const Triangle& triangle, const float* values, uint32_t& colour,
               uint16_t& depth) {
    const uint32_t newDepth = Depth(values[VALUE_OOW]);
    if (state.testsDepth && newDepth >= depth) return;
    const uint32_t texel = Sample(state, PointAt(*state.texture, triangle, values));
    if (state.alphaReference >= 0 && texel >> 24 != static_cast<uint32_t>(state.alphaReference)) return;
    const uint32_t combined = Combine(texel, values, state.addMask);
    colour = state.hasFog ? ApplyFog(state, combined, newDepth) : combined;
    if (state.writesDepth) depth = static_cast<uint16_t>(newDepth);
}

}  // namespace

void FillTrianglePortable(const FillState& state, const Triangle& triangle, const Target& target, int32_t firstRow,
                          int32_t endRow) {
    WalkRows(triangle, firstRow, endRow, [&](int32_t row, int32_t begin, int32_t end) {
        const double rows = row + 0.5 - triangle.y;
        const double columns = begin + 0.5 - triangle.x;
        float start[VALUE_COUNT];
        for (int i = 0; i < VALUE_COUNT; ++i)
            start[i] =
                static_cast<float>((triangle.origin[i] + triangle.perRow[i] * rows) + triangle.perColumn[i] * columns);
        const auto first = static_cast<size_t>(row * CPU_PITCH + begin);
        for (int32_t i = 0; i < end - begin; ++i) {
            float values[VALUE_COUNT];
            for (int k = 0; k < VALUE_COUNT; ++k)
                values[k] = start[k] + triangle.columnStep[k] * static_cast<float>(i);
            FillPixel(state, triangle, values, target.colour[first + static_cast<size_t>(i)],
                      target.depth[first + static_cast<size_t>(i)]);
        }
    });
}
