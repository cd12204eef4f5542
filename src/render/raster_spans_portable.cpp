// The reference. Like the faster routines it works in two passes over a batch of runs, so that the divisions of
// neighbouring runs overlap.

#include "math/convert.h"
#include "render/raster_spans.h"
#include "render/render_tables.h"

#include <algorithm>

namespace {

// Values in 8.8 fixed point. Pixels read only the low 16 bits, so the arithmetic may wrap.
struct SpanValues {
    uint32_t u, v, light;
};

// Pixels of one row, inside the frame, over which the values change by equal steps.
struct Run {
    uint8_t* pixels;
    int32_t count;
    SpanValues value, step;
};

struct Batch {
    Run runs[SPAN_BLOCKS_MAX];
    int32_t count;
};

uint32_t Round(float value) {
    return static_cast<uint32_t>(RoundToInt(value));
}

SpanValues DividedByDepth(const EdgeHalf& half) {
    const float depth = 1 / half.inverseDepth;
    return {Round(half.u * depth), Round(half.v * depth), Round(half.light * depth)};
}

uint32_t StepTowards(float target, uint32_t value, float factor) {
    return Round((target - static_cast<float>(static_cast<int32_t>(value))) * factor);
}

uint32_t BlockStep(uint32_t from, uint32_t to) {
    return static_cast<uint32_t>(static_cast<int32_t>(to - from) >> 4);
}

SpanValues Advanced(const SpanValues& value, const SpanValues& step, uint32_t pixels) {
    return {value.u + step.u * pixels, value.v + step.v * pixels, value.light + step.light * pixels};
}

// Adds the part of a run that lies inside the frame's columns.
void AddRun(Batch& batch, uint8_t* row, int32_t x, int32_t count, const SpanValues& value, const SpanValues& step) {
    const int32_t skipped = std::max(0, -x);
    const int32_t visible = std::min(count, ScreenWidth - x) - skipped;
    if (visible <= 0) return;
    batch.runs[batch.count++] = {row + x + skipped, visible, Advanced(value, step, static_cast<uint32_t>(skipped)),
                                 step};
}

// The values of a span's row at its first pixel.
EdgeHalf SpanStart(const EdgeHalf& left, const EdgeHalf& right, float t) {
    return {left.x, left.u + (right.u - left.u) * t, left.v + (right.v - left.v) * t,
            left.light + (right.light - left.light) * t,
            left.inverseDepth + (right.inverseDepth - left.inverseDepth) * t};
}

void AddShortSpan(Batch& batch, uint8_t* row, int32_t x, int32_t count, const EdgeHalf& start, const EdgeHalf& right) {
    const SpanValues value = DividedByDepth(start);
    const float depth = 1 / right.inverseDepth;
    const float perPixel = ReciprocalTable[count];
    const SpanValues step = {StepTowards(right.u * depth, value.u, perPixel),
                             StepTowards(right.v * depth, value.v, perPixel),
                             StepTowards(right.light * depth, value.light, perPixel)};
    AddRun(batch, row, x, count, value, step);
}

void AddLongSpan(Batch& batch, uint8_t* row, int32_t x, int32_t count, const EdgeHalf& left, EdgeHalf position,
                 const EdgeHalf& right) {
    const float perPixel = ReciprocalTable[count];
    const float uStep = SPAN_BLOCK * (right.u - left.u) * perPixel;
    const float vStep = SPAN_BLOCK * (right.v - left.v) * perPixel;
    const float lightStep = SPAN_BLOCK * (right.light - left.light) * perPixel;
    const float depthStep = SPAN_BLOCK * (right.inverseDepth - left.inverseDepth) * perPixel;
    SpanValues value = DividedByDepth(position);
    for (; count >= SPAN_BLOCK; count -= SPAN_BLOCK, x += SPAN_BLOCK) {
        position.u += uStep;
        position.v += vStep;
        position.light += lightStep;
        position.inverseDepth += depthStep;
        const SpanValues end = DividedByDepth(position);
        const SpanValues step = {BlockStep(value.u, end.u), BlockStep(value.v, end.v),
                                 BlockStep(value.light, end.light)};
        AddRun(batch, row, x, SPAN_BLOCK, value, step);
        value = end;
    }
    if (count == 0) return;
    const float perRest = ReciprocalTable[count];
    const SpanValues step = {StepTowards(right.u / right.inverseDepth, value.u, perRest),
                             StepTowards(right.v / right.inverseDepth, value.v, perRest),
                             StepTowards(right.light / right.inverseDepth, value.light, perRest)};
    AddRun(batch, row, x, count, value, step);
}

// Draws the pixels that the cover does not hold yet.
template <TexelZero ZERO>
void DrawRunBehind(Run run, SpanTexture texture, CoverRow* cover) {
    const ptrdiff_t place = run.pixels - FrameBuffer;
    CoverRow& row = cover[place / FramePitch];
    const int32_t x = static_cast<int32_t>(place % FramePitch);
    SpanValues value = run.value;
    for (int32_t i = 0; i < run.count; ++i) {
        const uint8_t texel = texture.texels[((value.v & 0xFF00) | (value.u >> 8 & 0xFF)) & texture.mask];
        if ((ZERO == TexelZero::Drawn || texel != 0) && !row.Holds(x + i)) {
            run.pixels[i] = ShadeTable[(value.light & 0xFF00) | texel];
            row.Add(x + i);
        }
        value = Advanced(value, run.step, 1);
    }
}

// Arguments go by value: as far as the compiler knows, writing pixels could change what is passed by reference.
template <TexelZero ZERO>
void DrawRun(Run run, SpanTexture texture) {
    SpanValues value = run.value;
#pragma GCC unroll 8
    for (int32_t i = 0; i < run.count; ++i) {
        const uint8_t texel = texture.texels[((value.v & 0xFF00) | (value.u >> 8 & 0xFF)) & texture.mask];
        if (ZERO == TexelZero::Drawn || texel != 0) run.pixels[i] = ShadeTable[(value.light & 0xFF00) | texel];
        value = Advanced(value, run.step, 1);
    }
}

template <TexelZero ZERO>
void DrawBatch(Batch& batch, const SpanTexture& texture, CoverRow* cover) {
    for (int32_t i = 0; i < batch.count; ++i) {
        if (cover != nullptr)
            DrawRunBehind<ZERO>(batch.runs[i], texture, cover);
        else
            DrawRun<ZERO>(batch.runs[i], texture);
    }
    batch.count = 0;
}

template <TexelZero ZERO>
void FillRows(const EdgeRows& rows, const SpanTexture& texture, CoverRow* cover) {
    Batch batch;
    batch.count = 0;
    for (int32_t y = rows.first; y < rows.end; ++y) {
        const EdgeHalf& left = rows.table[y].left;
        const EdgeHalf& right = rows.table[y].right;
        const int32_t x = CeilFixed(left.x);
        const int32_t count = CeilFixed(right.x) - x;
        if (count <= 0 || count >= RECIPROCAL_COUNT) continue;
        if (batch.count + SpanBlocks(count) > SPAN_BLOCKS_MAX) DrawBatch<ZERO>(batch, texture, cover);
        const float preStep = static_cast<float>(int64_t{x} * 65536 - left.x) / 65536;
        const EdgeHalf start = SpanStart(left, right, preStep * ReciprocalTable[count]);
        uint8_t* const row = FrameBuffer + static_cast<ptrdiff_t>(y) * FramePitch;
        if (count < SPAN_BLOCK)
            AddShortSpan(batch, row, x, count, start, right);
        else
            AddLongSpan(batch, row, x, count, left, start, right);
    }
    DrawBatch<ZERO>(batch, texture, cover);
}

}  // namespace

void FillRowsPortable(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
    if (texelZero == TexelZero::Drawn)
        FillRows<TexelZero::Drawn>(rows, texture, cover);
    else
        FillRows<TexelZero::Skipped>(rows, texture, cover);
}
