#include "math/convert.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"

#include <algorithm>

namespace {

// 8.8 fixed point; the pixels read only the low 16 bits, so the arithmetic may wrap.
struct SpanValues {
    uint32_t u, v, light;
};

struct Run {
    uint8_t* row;
    int32_t x;
    SpanValues value, step;
};

uint32_t Round(float value) {
    return static_cast<uint32_t>(RoundToInt(value));
}

SpanValues DividedByDepth(const EdgeHalf& half, float depth) {
    return {Round(half.u * depth), Round(half.v * depth), Round(half.light * depth)};
}

// The step that leads from value to target in 1 / factor pixels.
SpanValues StepTowards(float u, float v, float light, const SpanValues& value, float factor) {
    const auto step = [factor](float target, uint32_t from) {
        return Round((target - static_cast<float>(static_cast<int32_t>(from))) * factor);
    };
    return {step(u, value.u), step(v, value.v), step(light, value.light)};
}

SpanValues BlockStep(const SpanValues& from, const SpanValues& to) {
    const auto step = [](uint32_t a, uint32_t b) { return static_cast<uint32_t>(static_cast<int32_t>(b - a) >> 4); };
    return {step(from.u, to.u), step(from.v, to.v), step(from.light, to.light)};
}

void Advance(SpanValues& value, const SpanValues& step, uint32_t pixels) {
    value.u += step.u * pixels;
    value.v += step.v * pixels;
    value.light += step.light * pixels;
}

// Everything is passed by value: the pixels written could otherwise change it, as far as the compiler knows.
template <TexelZero ZERO>
void DrawRun(uint8_t* pixels, int32_t count, SpanValues value, SpanValues step, SpanTexture texture) {
#pragma GCC unroll 4
    for (int32_t i = 0; i < count; i++) {
        const uint8_t texel = texture.texels[((value.v & 0xFF00) | (value.u >> 8 & 0xFF)) & texture.mask];
        if (ZERO == TexelZero::Drawn || texel != 0) pixels[i] = ShadeTable[(value.light & 0xFF00) | texel];
        Advance(value, step, 1);
    }
}

template <TexelZero ZERO>
void DrawClippedRun(Run run, int32_t count, const SpanTexture& texture) {
    const int32_t skipped = std::clamp(-run.x, 0, count);
    Advance(run.value, run.step, static_cast<uint32_t>(skipped));
    run.x += skipped;
    const int32_t room = ScreenWidth - run.x;
    if (room > 0) DrawRun<ZERO>(run.row + run.x, std::min(count - skipped, room), run.value, run.step, texture);
}

template <TexelZero ZERO>
void DrawRunInFrame(const Run& run, int32_t count, const SpanTexture& texture, bool clips) {
    if (clips)
        DrawClippedRun<ZERO>(run, count, texture);
    else
        DrawRun<ZERO>(run.row + run.x, count, run.value, run.step, texture);
}

EdgeHalf SpanStart(const EdgeRow& row, float t) {
    const EdgeHalf& left = row.left;
    const EdgeHalf& right = row.right;
    return {left.x, left.u + (right.u - left.u) * t, left.v + (right.v - left.v) * t,
            left.light + (right.light - left.light) * t,
            left.inverseDepth + (right.inverseDepth - left.inverseDepth) * t};
}

template <TexelZero ZERO>
void DrawShortSpan(Run& run, int32_t count, const EdgeRow& row, const EdgeHalf& start, const SpanTexture& texture,
                   bool clips) {
    const EdgeHalf& right = row.right;
    const float rightDepth = 1 / right.inverseDepth;
    run.value = DividedByDepth(start, 1 / start.inverseDepth);
    run.step = StepTowards(right.u * rightDepth, right.v * rightDepth, right.light * rightDepth, run.value,
                           ReciprocalTable[count]);
    DrawRunInFrame<ZERO>(run, count, texture, clips);
}

template <TexelZero ZERO>
void DrawLongSpan(Run& run, int32_t count, const EdgeRow& row, EdgeHalf position, const SpanTexture& texture,
                  bool clips) {
    const EdgeHalf& left = row.left;
    const EdgeHalf& right = row.right;
    const float perPixel = ReciprocalTable[count];
    const float uStep = SPAN_BLOCK * (right.u - left.u) * perPixel;
    const float vStep = SPAN_BLOCK * (right.v - left.v) * perPixel;
    const float lightStep = SPAN_BLOCK * (right.light - left.light) * perPixel;
    const float depthStep = SPAN_BLOCK * (right.inverseDepth - left.inverseDepth) * perPixel;
    run.value = DividedByDepth(position, 1 / position.inverseDepth);
    for (int32_t block = count / SPAN_BLOCK; block > 0; block--) {
        position.u += uStep;
        position.v += vStep;
        position.light += lightStep;
        position.inverseDepth += depthStep;
        const SpanValues end = DividedByDepth(position, 1 / position.inverseDepth);
        run.step = BlockStep(run.value, end);
        DrawRunInFrame<ZERO>(run, SPAN_BLOCK, texture, clips);
        run.value = end;
        run.x += SPAN_BLOCK;
    }
    const int32_t rest = count % SPAN_BLOCK;
    if (rest == 0) return;
    run.step = StepTowards(right.u / right.inverseDepth, right.v / right.inverseDepth, right.light / right.inverseDepth,
                           run.value, ReciprocalTable[rest]);
    DrawRunInFrame<ZERO>(run, rest, texture, clips);
}

template <TexelZero ZERO>
void FillRow(const EdgeRow& row, uint8_t* pixels, const SpanTexture& texture) {
    const int32_t begin = CeilFixed(row.left.x);
    const int32_t end = CeilFixed(row.right.x);
    const int32_t count = end - begin;
    if (count <= 0 || count >= RECIPROCAL_COUNT || end <= 0 || begin >= ScreenWidth) return;
    const float preStep = static_cast<float>(int64_t{begin} * 65536 - row.left.x) / 65536;
    const EdgeHalf start = SpanStart(row, preStep * ReciprocalTable[count]);
    const bool clips = begin < 0 || end > ScreenWidth;
    Run run = {pixels, begin, {}, {}};
    if (count < SPAN_BLOCK)
        DrawShortSpan<ZERO>(run, count, row, start, texture, clips);
    else
        DrawLongSpan<ZERO>(run, count, row, start, texture, clips);
}

template <TexelZero ZERO>
void FillRows(const EdgeRows& rows, const SpanTexture& texture) {
    for (int32_t y = rows.first; y < rows.end; y++)
        FillRow<ZERO>(rows.table[y], FrameBuffer + static_cast<ptrdiff_t>(y) * FramePitch, texture);
}

}  // namespace

void FillRowsPortable(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero) {
    if (texelZero == TexelZero::Drawn)
        FillRows<TexelZero::Drawn>(rows, texture);
    else
        FillRows<TexelZero::Skipped>(rows, texture);
}
