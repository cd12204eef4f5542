#include "boards/cpu/triangle.h"
#include "machine/bits.h"

namespace {

// The nearest whole number, ties to even, by a sum that has no room for a fraction. A value out of range gives the
// least integer, as the vector instructions do.
int32_t Round(float value) {
    if (!(value >= -2147483648.0f && value < 2147483648.0f)) return INT32_MIN;
    return static_cast<int32_t>((double{value} + 6755399441055744.0) - 6755399441055744.0);
}

// The smaller of two; when one is not a number, the second, as the vector instructions do.
float Least(float a, float b) {
    return a < b ? a : b;
}

float Greatest(float a, float b) {
    return a > b ? a : b;
}

uint32_t Depth(float oow) {
    const auto bits = BitCast<int32_t>(Greatest(oow, 0.0f));
    return static_cast<uint32_t>(std::clamp((0x3F800000 + 0x7FF - bits) >> 11, 0, 0xFFFF));
}

int32_t Lod(const FillState& state, const Triangle& triangle, float alongRow, float w, float column) {
    const float downS = triangle.downColumn[0] + triangle.downColumnPerColumn[0] * column;
    const float downT = triangle.downColumn[1] + triangle.downColumnPerColumn[1] * column;
    const float longer = Greatest(downS * downS + downT * downT, alongRow);
    const float squaredW = w * w;
    const auto bits = BitCast<uint32_t>(longer * (squaredW * squaredW));
    return std::clamp(static_cast<int32_t>(bits >> 24) - 64, state.texture->firstLod, state.texture->lastLod);
}

// The position of a coordinate in 1/128 texels; its whole texels name the upper left one of the four that are mixed.
int32_t Position(float coordinate, float scale, bool wraps, int32_t mask, float last) {
    const float position = coordinate * scale - 64.0f;
    return wraps ? Round(position) & mask : Round(Least(Greatest(position, 0.0f), last));
}

// round(a x b / 2^15)
int32_t Scale(int32_t a, int32_t b) {
    return (a * b + 0x4000) >> 15;
}

uint32_t ByteOf(uint32_t pixel, int channel) {
    return pixel >> 8 * channel & 0xFF;
}

uint32_t Sample(const FillState& state, int32_t lod, float s, float t) {
    const MipLevel& level = state.texture->levels[lod];
    const int32_t u = Position(s, level.scaleS, state.wrapS, level.maskS, level.lastS);
    const int32_t v = Position(t, level.scaleT, state.wrapT, level.maskT, level.lastT);
    const int8_t* pairs = level.pairs + int64_t{TEXEL_PAIR_BYTES} * ((v >> 7) * level.pitch + (u >> 7));
    const int32_t partT = v & 127;
    uint32_t pixel = 0;
    for (int channel = 0; channel < CHANNEL_COUNT; ++channel) {
        const auto between = [&](const int8_t* pair) {
            return pair[2 * channel] * (128 - partT) + pair[2 * channel + 1] * partT;
        };
        const int32_t left = between(pairs);
        const int32_t value = left + Scale(between(pairs + TEXEL_PAIR_BYTES) - left, (u & 127) << 8);
        pixel |= static_cast<uint32_t>((value + (128 << 7) + 64) >> 7) << 8 * channel;
    }
    return pixel;
}

uint32_t Combine(const FillState& state, uint32_t texel, const uint32_t* vertex) {
    const auto whole = [&](int channel, int32_t least, int32_t most) {
        return static_cast<uint32_t>(std::clamp(static_cast<int32_t>(vertex[channel]) >> 16, least, most));
    };
    const uint32_t added = state.addsAlpha ? whole(CHANNEL_ALPHA, 0, 255) : 0;
    uint32_t result = 0;
    for (const int channel : {CHANNEL_BLUE, CHANNEL_GREEN, CHANNEL_RED}) {
        const uint32_t scaled = ByteOf(texel, channel) * whole(channel, 1, 256) >> 8;
        result |= std::min(scaled + added, 255U) << 8 * channel;
    }
    return result;
}

uint32_t ApplyFog(const FillState& state, uint32_t colour, uint32_t depth) {
    const FogEntry& entry = state.fog[depth >> 10];
    const int32_t share = entry.share + Scale(entry.step, static_cast<int32_t>(depth & FOG_FRACTION) << 5);
    uint32_t result = 0;
    for (int channel = 0; channel < CHANNEL_ALPHA; ++channel) {
        const auto from = static_cast<int32_t>(ByteOf(colour, channel));
        const auto to = static_cast<int32_t>(state.fogChannels >> 16 * channel & 0xFF);
        result |= static_cast<uint32_t>(from + Scale(to - from, share)) << 8 * channel;
    }
    return result;
}

struct Row {
    float planes[PLANE_COUNT];  // at the row's first pixel
    uint32_t colours[CHANNEL_COUNT];
    float alongRow;
    int32_t begin;
};

Row StartRow(const Triangle& triangle, int32_t row, int32_t begin) {
    Row start;
    for (int i = 0; i < PLANE_COUNT; ++i)
        start.planes[i] =
            static_cast<float>((triangle.origin[i] + triangle.perRow[i] * row) + triangle.perColumn[i] * begin);
    for (int i = 0; i < CHANNEL_COUNT; ++i)
        start.colours[i] = triangle.colourOrigin[i] + triangle.colourPerRow[i] * static_cast<uint32_t>(row) +
                           triangle.colourPerColumn[i] * static_cast<uint32_t>(begin);
    start.alongRow = SquareAlongRow(triangle, row);
    start.begin = begin;
    return start;
}

void FillPixel(const FillState& state, const Triangle& triangle, const Row& row, int32_t i, uint32_t& colour,
               uint16_t& depth) {
    const auto at = [&](Plane plane) { return row.planes[plane] + triangle.columnStep[plane] * static_cast<float>(i); };
    const float oow = at(PLANE_OOW);
    const uint32_t newDepth = Depth(oow);
    if (state.testsDepth && newDepth >= depth) return;
    const float w = 1.0f / oow;
    const int32_t lod = Lod(state, triangle, row.alongRow, w, static_cast<float>(row.begin + i));
    const uint32_t texel = Sample(state, lod, at(PLANE_SOW) * w, at(PLANE_TOW) * w);
    if (state.alphaReference >= 0 && texel >> 24 != static_cast<uint32_t>(state.alphaReference)) return;
    uint32_t vertex[CHANNEL_COUNT];
    for (int k = 0; k < CHANNEL_COUNT; ++k)
        vertex[k] = row.colours[k] + triangle.colourPerColumn[k] * static_cast<uint32_t>(i);
    colour = Combine(state, texel, vertex);
    if (state.hasFog) colour = ApplyFog(state, colour, newDepth);
    if (state.writesDepth) depth = static_cast<uint16_t>(newDepth);
}

}  // namespace

void FillTrianglePortable(const FillState& state, const Triangle& triangle, const Target& target, int32_t firstRow,
                          int32_t endRow) {
    for (int32_t row = firstRow; row < endRow; ++row) {
        const Span span = SpanOf(triangle, row);
        const Row start = StartRow(triangle, row, span.begin);
        uint32_t* colour = target.colour + row * CPU_PITCH;
        uint16_t* depth = target.depth + row * CPU_PITCH;
        for (int32_t column = span.begin; column < span.end; ++column)
            FillPixel(state, triangle, start, column - span.begin, colour[column], depth[column]);
    }
}
