#ifdef __x86_64__

#include "boards/cpu/triangle.h"

#include <bit>
#include <immintrin.h>

#define AVX2_CODE [[gnu::target("avx2")]]

namespace {

struct Values {
    __m256 of[VALUE_ALPHA + 1];
};

struct Texels {
    __m256i low, high;  // 16 bits a channel: pixels 0 1 4 5, and 2 3 6 7
};

AVX2_CODE inline __m256i Depths(__m256 oow) {
    const __m256i bits = _mm256_castps_si256(oow);
    __m256i code = _mm256_srai_epi32(_mm256_sub_epi32(_mm256_set1_epi32(0x3F800000 + 0x7FF), bits), 11);
    code = _mm256_min_epi32(_mm256_max_epi32(code, _mm256_setzero_si256()), _mm256_set1_epi32(0xFFFF));
    const __m256i isPositive = _mm256_cmpgt_epi32(bits, _mm256_setzero_si256());
    return _mm256_blendv_epi8(_mm256_set1_epi32(0xFFFF), code, isPositive);
}

AVX2_CODE inline __m256 SquaredLength(const float* step, __m256 s, __m256 t, __m256 w) {
    const __m256 oow = _mm256_set1_ps(step[VALUE_OOW]);
    const __m256 ds = _mm256_mul_ps(_mm256_sub_ps(_mm256_set1_ps(step[VALUE_SOW]), _mm256_mul_ps(s, oow)), w);
    const __m256 dt = _mm256_mul_ps(_mm256_sub_ps(_mm256_set1_ps(step[VALUE_TOW]), _mm256_mul_ps(t, oow)), w);
    return _mm256_add_ps(_mm256_mul_ps(ds, ds), _mm256_mul_ps(dt, dt));
}

AVX2_CODE inline __m256i Lods(const CpuTexture& texture, const Triangle& triangle, __m256 s, __m256 t, __m256 w) {
    const __m256 longer =
        _mm256_max_ps(SquaredLength(triangle.columnStep, s, t, w), SquaredLength(triangle.rowStep, s, t, w));
    __m256i exponent = _mm256_srli_epi32(_mm256_castps_si256(longer), 23);
    exponent = _mm256_sub_epi32(_mm256_and_si256(exponent, _mm256_set1_epi32(0xFF)), _mm256_set1_epi32(126));
    const __m256i lod = _mm256_max_epi32(_mm256_srai_epi32(exponent, 1), _mm256_set1_epi32(texture.firstLod));
    return _mm256_min_epi32(lod, _mm256_set1_epi32(texture.lastLod));
}

AVX2_CODE inline __m256i TapPositions(__m256 coordinate, float scale) {
    __m256 position = _mm256_mul_ps(coordinate, _mm256_set1_ps(scale));
    position = _mm256_min_ps(position, _mm256_set1_ps(TEXEL_LIMIT));
    position = _mm256_max_ps(position, _mm256_set1_ps(-TEXEL_LIMIT));
    return _mm256_cvtps_epi32(_mm256_sub_ps(position, _mm256_set1_ps(64.0F)));
}

AVX2_CODE inline __m256i Limit(__m256i tap, __m256i last, bool wraps) {
    if (wraps) return _mm256_and_si256(tap, last);
    return _mm256_min_epi32(_mm256_max_epi32(tap, _mm256_setzero_si256()), last);
}

// The low half of each pixel's lane, for all four channels of the pixels of Texels::low or high.
AVX2_CODE inline __m256i ForLow(__m256i lanes) {
    const __m256i pattern = _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 4, 5, 4, 5, 4, 5, 4, 5, 0, 1, 0, 1, 0, 1, 0, 1, 4,
                                             5, 4, 5, 4, 5, 4, 5);
    return _mm256_shuffle_epi8(lanes, pattern);
}

AVX2_CODE inline __m256i ForHigh(__m256i lanes) {
    return ForLow(_mm256_srli_si256(lanes, 8));
}

AVX2_CODE inline Texels Unpack(__m256i pixels) {
    const __m256i zero = _mm256_setzero_si256();
    return {_mm256_unpacklo_epi8(pixels, zero), _mm256_unpackhi_epi8(pixels, zero)};
}

AVX2_CODE inline __m256i Between(__m256i from, __m256i to, __m256i part) {
    return _mm256_add_epi16(_mm256_slli_epi16(from, 7), _mm256_mullo_epi16(_mm256_sub_epi16(to, from), part));
}

AVX2_CODE inline __m256i Filter(const __m256i taps[4], __m256i partS, __m256i partT) {
    const __m256i upper = Between(taps[0], taps[1], partS);
    const __m256i lower = Between(taps[2], taps[3], partS);
    const __m256i value =
        _mm256_add_epi16(upper, _mm256_mulhrs_epi16(_mm256_sub_epi16(lower, upper), _mm256_slli_epi16(partT, 8)));
    return _mm256_srli_epi16(_mm256_add_epi16(value, _mm256_set1_epi16(64)), 7);
}

AVX2_CODE inline __m256i Gather(const uint32_t* texels, __m256i index) {
    return _mm256_i32gather_epi32(reinterpret_cast<const int*>(texels), index, 4);
}

// Eight filtered texels of one level, 0xAARRGGBB.
AVX2_CODE inline __m256i Sample(const FillState& state, const MipLevel& level, __m256 s, __m256 t) {
    const __m256i one = _mm256_set1_epi32(1);
    const __m256i u = TapPositions(s, level.scaleS);
    const __m256i v = TapPositions(t, level.scaleT);
    const __m256i column = _mm256_srai_epi32(u, 7);
    const __m256i row = _mm256_srai_epi32(v, 7);
    const __m256i lastColumn = _mm256_set1_epi32(level.lastColumn);
    const __m256i lastRow = _mm256_set1_epi32(level.lastRow);
    const __m128i shift = _mm_cvtsi32_si128(level.rowShift);
    const __m256i left = Limit(column, lastColumn, state.wrapS);
    const __m256i right = Limit(_mm256_add_epi32(column, one), lastColumn, state.wrapS);
    const __m256i upper = _mm256_sll_epi32(Limit(row, lastRow, state.wrapT), shift);
    const __m256i lower = _mm256_sll_epi32(Limit(_mm256_add_epi32(row, one), lastRow, state.wrapT), shift);
    const Texels taps[4] = {Unpack(Gather(level.texels, _mm256_add_epi32(upper, left))),
                            Unpack(Gather(level.texels, _mm256_add_epi32(upper, right))),
                            Unpack(Gather(level.texels, _mm256_add_epi32(lower, left))),
                            Unpack(Gather(level.texels, _mm256_add_epi32(lower, right)))};
    const __m256i fraction = _mm256_set1_epi32(127);
    const __m256i partS = _mm256_and_si256(u, fraction);
    const __m256i partT = _mm256_and_si256(v, fraction);
    const __m256i low[4] = {taps[0].low, taps[1].low, taps[2].low, taps[3].low};
    const __m256i high[4] = {taps[0].high, taps[1].high, taps[2].high, taps[3].high};
    return _mm256_packus_epi16(Filter(low, ForLow(partS), ForLow(partT)), Filter(high, ForHigh(partS), ForHigh(partT)));
}

// Neighbouring pixels rarely take different levels: one level at a time, for the pixels that want it.
AVX2_CODE inline __m256i SampleLevels(const FillState& state, const Triangle& triangle, const Values& values,
                                      uint32_t wanted) {
    const __m256 w = _mm256_div_ps(_mm256_set1_ps(1.0F), values.of[VALUE_OOW]);
    const __m256 s = _mm256_mul_ps(values.of[VALUE_SOW], w);
    const __m256 t = _mm256_mul_ps(values.of[VALUE_TOW], w);
    const __m256i lods = Lods(*state.texture, triangle, s, t, w);
    alignas(32) int32_t lod[GROUP];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lod), lods);
    __m256i texels = _mm256_setzero_si256();
    while (wanted != 0) {
        const int32_t next = lod[std::countr_zero(wanted)];
        const __m256i same = _mm256_cmpeq_epi32(lods, _mm256_set1_epi32(next));
        texels = _mm256_blendv_epi8(texels, Sample(state, state.texture->levels[next], s, t), same);
        wanted &= ~static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(same)));
    }
    return texels;
}

AVX2_CODE inline __m256i VertexChannel(__m256 value) {
    return _mm256_cvtps_epi32(_mm256_min_ps(_mm256_max_ps(value, _mm256_setzero_ps()), _mm256_set1_ps(255.0F)));
}

AVX2_CODE inline __m256i CombineHalf(__m256i texels, __m256i colours, __m256i added) {
    const __m256i factor = _mm256_add_epi16(colours, _mm256_set1_epi16(1));
    const __m256i scaled = _mm256_srli_epi16(_mm256_mullo_epi16(texels, factor), 8);
    return _mm256_min_epi16(_mm256_add_epi16(scaled, added), _mm256_set1_epi16(255));
}

AVX2_CODE inline Texels Combine(const FillState& state, __m256i texels, const Values& values) {
    const __m256i red = _mm256_slli_epi32(VertexChannel(values.of[VALUE_RED]), 16);
    const __m256i green = _mm256_slli_epi32(VertexChannel(values.of[VALUE_GREEN]), 8);
    const Texels colours = Unpack(_mm256_or_si256(_mm256_or_si256(red, green), VertexChannel(values.of[VALUE_BLUE])));
    const __m256i alphas = _mm256_mullo_epi32(VertexChannel(values.of[VALUE_ALPHA]), _mm256_set1_epi32(0x010101));
    const Texels added = Unpack(_mm256_and_si256(alphas, _mm256_set1_epi32(static_cast<int32_t>(state.addMask))));
    const Texels halves = Unpack(texels);
    return {CombineHalf(halves.low, colours.low, added.low), CombineHalf(halves.high, colours.high, added.high)};
}

AVX2_CODE inline __m256i FogHalf(__m256i colours, __m256i fog, __m256i shares) {
    return _mm256_add_epi16(colours, _mm256_mulhrs_epi16(_mm256_sub_epi16(fog, colours), shares));
}

AVX2_CODE inline Texels ApplyFog(const FillState& state, Texels colours, __m256i depths) {
    const __m256i entries = _mm256_i32gather_epi32(state.fog, _mm256_srli_epi32(depths, 10), 4);
    const __m256i byte = _mm256_set1_epi32(0xFF);
    const __m256i base = _mm256_slli_epi32(_mm256_and_si256(entries, byte), 8);
    const __m256i fraction = _mm256_and_si256(_mm256_srli_epi32(depths, 2), byte);
    const __m256i part = _mm256_add_epi32(base, _mm256_mullo_epi32(_mm256_srai_epi32(entries, 16), fraction));
    __m256i shares = _mm256_srli_epi32(_mm256_mullo_epi32(part, _mm256_set1_epi32(32897)), 16);
    shares = _mm256_min_epi32(shares, _mm256_set1_epi32(32767));
    const Texels fog = Unpack(_mm256_set1_epi32(static_cast<int32_t>(state.fogColour)));
    return {FogHalf(colours.low, fog.low, ForLow(shares)), FogHalf(colours.high, fog.high, ForHigh(shares))};
}

AVX2_CODE inline void StoreDepths(uint16_t* depth, __m256i before, __m256i depths, __m256i drawn) {
    const __m256i chosen = _mm256_blendv_epi8(before, depths, drawn);
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi32(chosen, chosen), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(depth), _mm256_castsi256_si128(packed));
}

AVX2_CODE inline void FillGroup(const FillState& state, const Triangle& triangle, const Values& values, __m256i drawn,
                                uint32_t* colour, uint16_t* depth) {
    const __m256i depths = Depths(values.of[VALUE_OOW]);
    const __m256i before = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(depth)));
    if (state.testsDepth) drawn = _mm256_and_si256(drawn, _mm256_cmpgt_epi32(before, depths));
    const auto wanted = static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(drawn)));
    if (wanted == 0) return;
    const __m256i texels = SampleLevels(state, triangle, values, wanted);
    if (state.alphaReference >= 0) {
        const __m256i reference = _mm256_set1_epi32(state.alphaReference);
        drawn = _mm256_and_si256(drawn, _mm256_cmpeq_epi32(_mm256_srli_epi32(texels, 24), reference));
    }
    Texels colours = Combine(state, texels, values);
    if (state.hasFog) colours = ApplyFog(state, colours, depths);
    const __m256i pixels =
        _mm256_and_si256(_mm256_packus_epi16(colours.low, colours.high), _mm256_set1_epi32(0xFFFFFF));
    auto* const destination = reinterpret_cast<__m256i*>(colour);
    _mm256_storeu_si256(destination, _mm256_blendv_epi8(_mm256_loadu_si256(destination), pixels, drawn));
    if (state.writesDepth) StoreDepths(depth, before, depths, drawn);
}

AVX2_CODE inline __m256 RowStart(const Triangle& triangle, __m256d rows, __m256d columns) {
    __m128 halves[2];
    for (int i = 0; i < 2; ++i) {
        const __m256d down = _mm256_mul_pd(_mm256_loadu_pd(triangle.perRow + 4 * i), rows);
        const __m256d across = _mm256_mul_pd(_mm256_loadu_pd(triangle.perColumn + 4 * i), columns);
        const __m256d origin = _mm256_loadu_pd(triangle.origin + 4 * i);
        halves[i] = _mm256_cvtpd_ps(_mm256_add_pd(_mm256_add_pd(origin, down), across));
    }
    return _mm256_set_m128(halves[1], halves[0]);
}

AVX2_CODE inline void FillSpan(const FillState& state, const Triangle& triangle, const float* start, int32_t count,
                               uint32_t* colour, uint16_t* depth) {
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    for (int32_t i = 0; i < count; i += GROUP) {
        const __m256i offsets = _mm256_add_epi32(lanes, _mm256_set1_epi32(i));
        const __m256 columns = _mm256_cvtepi32_ps(offsets);
        Values values;
        for (int k = 0; k <= VALUE_ALPHA; ++k)
            values.of[k] =
                _mm256_add_ps(_mm256_set1_ps(start[k]), _mm256_mul_ps(_mm256_set1_ps(triangle.columnStep[k]), columns));
        const __m256i inside = _mm256_cmpgt_epi32(_mm256_set1_epi32(count), offsets);
        FillGroup(state, triangle, values, inside, colour + i, depth + i);
    }
}

AVX2_CODE void FillRow(const FillState& state, const Triangle& triangle, const Target& target, int32_t row,
                       int32_t begin, int32_t end) {
    alignas(32) float start[VALUE_COUNT];
    _mm256_store_ps(
        start, RowStart(triangle, _mm256_set1_pd(row + 0.5 - triangle.y), _mm256_set1_pd(begin + 0.5 - triangle.x)));
    const auto first = static_cast<size_t>(row * CPU_PITCH + begin);
    FillSpan(state, triangle, start, end - begin, target.colour + first, target.depth + first);
}

}  // namespace

void FillTriangleAvx2(const FillState& state, const Triangle& triangle, const Target& target, int32_t firstRow,
                      int32_t endRow) {
    WalkRows(triangle, firstRow, endRow,
             [&](int32_t row, int32_t begin, int32_t end) { FillRow(state, triangle, target, row, begin, end); });
}

#else

#include "boards/cpu/triangle.h"

void FillTriangleAvx2(const FillState&, const Triangle&, const Target&, int32_t, int32_t) {}

#endif
