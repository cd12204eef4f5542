// Sixteen pixels at once: texel and light positions in 16-bit lanes, whose wrap-around loses nothing because the
// pixels read only the low 16 bits; the texels and colours themselves are scalar loads, which beat gathers.
#ifdef __x86_64__

#include "render/raster_spans.h"
#include "render/render_tables.h"

#include <cstring>
#include <immintrin.h>

#define AVX2_CODE [[gnu::target("avx2")]]

namespace {

// u, v and light of a span's pixel in the low three lanes, 8.8 fixed point.
typedef __m128i Values;

struct Block {
    __m128i colours;
    __m128i texels;
};

AVX2_CODE inline __m128 Depth(__m128 overDepth) {
    const __m128 depths = _mm_div_ps(_mm_set1_ps(1.0f), overDepth);
    return _mm_permute_ps(depths, 0xFF);
}

// The 16-bit quantity that starts at `byte` of value, at each of sixteen pixels.
template <int BYTE>
AVX2_CODE inline __m256i AtPixels(Values value, Values step) {
    const __m256i select = _mm256_set1_epi16(static_cast<int16_t>(BYTE | (BYTE + 1) << 8));
    const __m256i pixel = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m256i start = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(value), select);
    const __m256i steps = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(step), select);
    return _mm256_add_epi16(start, _mm256_mullo_epi16(steps, pixel));
}

template <TexelZero ZERO>
AVX2_CODE inline Block ShadeBlock(Values value, Values step, const SpanTexture& texture) {
    const __m256i highByte = _mm256_set1_epi16(static_cast<int16_t>(0xFF00));
    const __m256i column = _mm256_srli_epi16(AtPixels<0>(value, step), 8);
    const __m256i line = _mm256_and_si256(AtPixels<4>(value, step), highByte);
    const __m256i mask = _mm256_set1_epi16(static_cast<int16_t>(texture.mask));
    const __m256i offsets = _mm256_and_si256(_mm256_or_si256(line, column), mask);
    alignas(32) uint16_t shades[SPAN_BLOCK];
    _mm256_store_si256(reinterpret_cast<__m256i*>(shades), _mm256_and_si256(AtPixels<8>(value, step), highByte));
    asm("" : "+m"(shades));
    alignas(16) uint8_t colours[SPAN_BLOCK];
    alignas(16) uint8_t texels[SPAN_BLOCK];
    uint64_t words[4] = {static_cast<uint64_t>(_mm256_extract_epi64(offsets, 0)),
                         static_cast<uint64_t>(_mm256_extract_epi64(offsets, 1)),
                         static_cast<uint64_t>(_mm256_extract_epi64(offsets, 2)),
                         static_cast<uint64_t>(_mm256_extract_epi64(offsets, 3))};
#pragma GCC unroll 16
    for (int i = 0; i < SPAN_BLOCK; i++) {
        const uint8_t texel = texture.texels[words[i / 4] >> (i % 4 * 16) & 0xFFFF];
        colours[i] = ShadeTable[shades[i] | texel];
        if (ZERO == TexelZero::Skipped) texels[i] = texel;
    }
    Block block;
    block.colours = _mm_load_si128(reinterpret_cast<const __m128i*>(colours));
    block.texels =
        ZERO == TexelZero::Skipped ? _mm_load_si128(reinterpret_cast<const __m128i*>(texels)) : block.colours;
    return block;
}

template <TexelZero ZERO>
AVX2_CODE inline __m128i Covered(const Block& block, __m128i background) {
    if (ZERO == TexelZero::Drawn) return block.colours;
    return _mm_blendv_epi8(block.colours, background, _mm_cmpeq_epi8(block.texels, _mm_setzero_si128()));
}

template <TexelZero ZERO>
AVX2_CODE inline void StoreBlock(uint8_t* pixels, const Block& block) {
    __m128i* destination = reinterpret_cast<__m128i*>(pixels);
    const __m128i background = ZERO == TexelZero::Skipped ? _mm_loadu_si128(destination) : _mm_setzero_si128();
    _mm_storeu_si128(destination, Covered<ZERO>(block, background));
}

// The first `count` pixels of a block as two words that overlap.
template <TexelZero ZERO, class Word>
AVX2_CODE inline void StoreWords(uint8_t* pixels, const Block& block, int32_t count) {
    alignas(16) static constexpr uint8_t FROM[SPAN_BLOCK] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    uint8_t* const last = pixels + count - sizeof(Word);
    const __m128i shift = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(FROM + count - sizeof(Word)));
    const Block end = {_mm_shuffle_epi8(block.colours, shift), _mm_shuffle_epi8(block.texels, shift)};
    Word words[2] = {};
    if (ZERO == TexelZero::Skipped) {
        std::memcpy(&words[0], pixels, sizeof(Word));
        std::memcpy(&words[1], last, sizeof(Word));
    }
    const __m128i first = Covered<ZERO>(block, _mm_cvtsi64_si128(static_cast<int64_t>(words[0])));
    const __m128i second = Covered<ZERO>(end, _mm_cvtsi64_si128(static_cast<int64_t>(words[1])));
    words[0] = static_cast<Word>(_mm_cvtsi128_si64(first));
    words[1] = static_cast<Word>(_mm_cvtsi128_si64(second));
    std::memcpy(pixels, &words[0], sizeof(Word));
    std::memcpy(last, &words[1], sizeof(Word));
}

template <TexelZero ZERO>
AVX2_CODE inline void StorePixels(uint8_t* pixels, const Block& block, int32_t count) {
    if (count >= 8)
        StoreWords<ZERO, uint64_t>(pixels, block, count);
    else if (count >= 4)
        StoreWords<ZERO, uint32_t>(pixels, block, count);
    else if (count >= 2)
        StoreWords<ZERO, uint16_t>(pixels, block, count);
    else
        StoreWords<ZERO, uint8_t>(pixels, block, count);
}

// The step that leads from value to target in 1 / factor pixels.
AVX2_CODE inline Values StepTowards(__m128 target, Values value, float factor) {
    const __m128 distance = _mm_sub_ps(target, _mm_cvtepi32_ps(value));
    return _mm_cvtps_epi32(_mm_mul_ps(distance, _mm_set1_ps(factor)));
}

template <TexelZero ZERO>
AVX2_CODE inline void DrawShortSpan(uint8_t* pixels, int32_t count, __m128 start, __m128 right, float perPixel,
                                    const SpanTexture& texture) {
    // One division serves both ends.
    const __m128 depths = _mm_div_ps(_mm_set1_ps(1.0f), _mm_unpackhi_ps(start, right));
    const __m128 startDepth = _mm_permute_ps(depths, _MM_SHUFFLE(2, 2, 2, 2));
    const __m128 rightDepth = _mm_permute_ps(depths, _MM_SHUFFLE(3, 3, 3, 3));
    const Values value = _mm_cvtps_epi32(_mm_mul_ps(start, startDepth));
    const Values step = StepTowards(_mm_mul_ps(right, rightDepth), value, perPixel);
    StorePixels<ZERO>(pixels, ShadeBlock<ZERO>(value, step, texture), count);
}

template <TexelZero ZERO>
AVX2_CODE inline void DrawLongSpan(uint8_t* pixels, int32_t count, __m128 position, __m128 right, __m128 change,
                                   float perPixel, const SpanTexture& texture) {
    const __m128 blockChange = _mm_mul_ps(_mm_mul_ps(_mm_set1_ps(SPAN_BLOCK), change), _mm_set1_ps(perPixel));
    Values value = _mm_cvtps_epi32(_mm_mul_ps(position, Depth(position)));
    for (; count >= SPAN_BLOCK; count -= SPAN_BLOCK, pixels += SPAN_BLOCK) {
        position = _mm_add_ps(position, blockChange);
        const Values end = _mm_cvtps_epi32(_mm_mul_ps(position, Depth(position)));
        const Values step = _mm_srai_epi32(_mm_sub_epi32(end, value), 4);
        StoreBlock<ZERO>(pixels, ShadeBlock<ZERO>(value, step, texture));
        value = end;
    }
    if (count == 0) return;
    const __m128 target = _mm_div_ps(right, _mm_permute_ps(right, 0xFF));
    const Values step = StepTowards(target, value, ReciprocalTable[count]);
    StorePixels<ZERO>(pixels, ShadeBlock<ZERO>(value, step, texture), count);
}

template <TexelZero ZERO>
AVX2_CODE void FillRows(const EdgeRows& rows, const SpanTexture& texture) {
    for (int32_t y = rows.first; y < rows.end; y++) {
        const EdgeRow& row = rows.table[y];
        const int32_t begin = CeilFixed(row.left.x);
        const int32_t end = CeilFixed(row.right.x);
        const int32_t count = end - begin;
        if (count <= 0) continue;
        if (begin < 0 || end > ScreenWidth) {
            FillRowsPortable({rows.table, y, y + 1}, texture, ZERO);
            continue;
        }
        const float perPixel = ReciprocalTable[count];
        const float preStep = static_cast<float>(begin * 65536 - row.left.x) / 65536;
        const __m128 left = _mm_loadu_ps(&row.left.u);
        const __m128 right = _mm_loadu_ps(&row.right.u);
        const __m128 change = _mm_sub_ps(right, left);
        const __m128 start = _mm_add_ps(left, _mm_mul_ps(change, _mm_set1_ps(preStep * perPixel)));
        uint8_t* pixels = FrameBuffer + static_cast<ptrdiff_t>(y) * FramePitch + begin;
        if (count < SPAN_BLOCK)
            DrawShortSpan<ZERO>(pixels, count, start, right, perPixel, texture);
        else
            DrawLongSpan<ZERO>(pixels, count, start, right, change, perPixel, texture);
    }
}

}  // namespace

void FillRowsAvx2(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero) {
    if (texelZero == TexelZero::Drawn)
        FillRows<TexelZero::Drawn>(rows, texture);
    else
        FillRows<TexelZero::Skipped>(rows, texture);
}

#endif
