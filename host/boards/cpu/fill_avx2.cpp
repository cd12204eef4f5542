#ifdef __x86_64__

#include "boards/cpu/triangle.h"

#include <bit>
#include <immintrin.h>

#define AVX2_CODE __attribute__((target("avx2")))
#define AVX2_INLINE AVX2_CODE __attribute__((always_inline)) inline

namespace {

// The channels of eight pixels, 16 bits each: pixels 0 1 4 5 in one register and 2 3 6 7 in the other. That is the
// order in which instructions that work within 128 bits unpack and pack a register.
struct Channels {
    __m256i low, high;
};

// What stays the same all over a triangle.
struct Setting {
    const FillState& state;
    const Triangle& triangle;
    // The level that the last group used, and its LOD: the next group most likely uses it, too.
    const MipLevel* level;
    __m256i lod;
    __m256 steps[PLANE_TOW + 1];
    __m256i colourOffsets[4];  // for pixels 0 and 4, 1 and 5, 2 and 6, 3 and 7
    __m128i colourStep;
};

// What stays the same along a row.
struct Row {
    __m256 starts[PLANE_TOW + 1];
    __m128i colours;  // at the first pixel
    __m256 alongRow;
    float begin;
};

AVX2_INLINE __m256i Broadcast(__m128i half) {
    return _mm256_broadcastsi128_si256(half);
}

AVX2_INLINE __m128i LoadColours(const uint32_t* colours) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(colours));
}

AVX2_INLINE __m128i Times(__m128i colours, int32_t count) {
    return _mm_mullo_epi32(colours, _mm_set1_epi32(count));
}

AVX2_INLINE Setting MakeSetting(const FillState& state, const Triangle& triangle) {
    const int32_t lod = state.texture->firstLod;
    Setting setting{state, triangle, &state.texture->levels[lod],          _mm256_set1_epi32(lod),
                    {},    {},       LoadColours(triangle.colourPerColumn)};
    for (int plane = 0; plane <= PLANE_TOW; ++plane)
        setting.steps[plane] = _mm256_set1_ps(triangle.columnStep[plane]);
    const __m256i step = Broadcast(setting.colourStep);
    setting.colourOffsets[0] =
        _mm256_inserti128_si256(_mm256_setzero_si256(), _mm_slli_epi32(setting.colourStep, 2), 1);
    for (int i = 1; i < 4; ++i)
        setting.colourOffsets[i] = _mm256_add_epi32(setting.colourOffsets[i - 1], step);
    return setting;
}

AVX2_INLINE Row StartRow(const Triangle& triangle, int32_t row, int32_t begin) {
    const __m256d down = _mm256_mul_pd(_mm256_loadu_pd(triangle.perRow), _mm256_set1_pd(row));
    const __m256d across = _mm256_mul_pd(_mm256_loadu_pd(triangle.perColumn), _mm256_set1_pd(begin));
    const __m128 planes = _mm256_cvtpd_ps(_mm256_add_pd(_mm256_add_pd(_mm256_loadu_pd(triangle.origin), down), across));
    const __m128i colourDown = Times(LoadColours(triangle.colourPerRow), row);
    const __m128i colourAcross = Times(LoadColours(triangle.colourPerColumn), begin);
    return {{_mm256_broadcastss_ps(planes), _mm256_broadcastss_ps(_mm_movehdup_ps(planes)),
             _mm256_broadcastss_ps(_mm_movehl_ps(planes, planes))},
            _mm_add_epi32(_mm_add_epi32(LoadColours(triangle.colourOrigin), colourDown), colourAcross),
            _mm256_set1_ps(SquareAlongRow(triangle, row)),
            static_cast<float>(begin)};
}

AVX2_INLINE __m256 At(const Setting& setting, const Row& row, Plane plane, __m256 columns) {
    return _mm256_add_ps(row.starts[plane], _mm256_mul_ps(setting.steps[plane], columns));
}

AVX2_INLINE __m128i Depths(__m256 oow) {
    const __m256i bits = _mm256_castps_si256(_mm256_max_ps(oow, _mm256_setzero_ps()));
    const __m256i codes = _mm256_srai_epi32(_mm256_sub_epi32(_mm256_set1_epi32(0x3F800000 + 0x7FF), bits), 11);
    return _mm_packus_epi32(_mm256_castsi256_si128(codes), _mm256_extracti128_si256(codes, 1));
}

AVX2_INLINE __m256i Lods(const Setting& setting, const Row& row, __m256 w, __m256 columns) {
    const Triangle& triangle = setting.triangle;
    const __m256 column = _mm256_add_ps(columns, _mm256_set1_ps(row.begin));
    const auto down = [&](int i) AVX2_CODE {
        return _mm256_add_ps(_mm256_set1_ps(triangle.downColumn[i]),
                             _mm256_mul_ps(_mm256_set1_ps(triangle.downColumnPerColumn[i]), column));
    };
    const __m256 s = down(0);
    const __m256 t = down(1);
    const __m256 longer = _mm256_max_ps(_mm256_add_ps(_mm256_mul_ps(s, s), _mm256_mul_ps(t, t)), row.alongRow);
    const __m256 squaredW = _mm256_mul_ps(w, w);
    const __m256 square = _mm256_mul_ps(longer, _mm256_mul_ps(squaredW, squaredW));
    const __m256i lods = _mm256_sub_epi32(_mm256_srli_epi32(_mm256_castps_si256(square), 24), _mm256_set1_epi32(64));
    const CpuTexture& texture = *setting.state.texture;
    return _mm256_min_epi32(_mm256_max_epi32(lods, _mm256_set1_epi32(texture.firstLod)),
                            _mm256_set1_epi32(texture.lastLod));
}

AVX2_INLINE __m256i Positions(__m256 coordinate, float scale, bool wraps, int32_t mask, float last) {
    const __m256 position = _mm256_sub_ps(_mm256_mul_ps(coordinate, _mm256_set1_ps(scale)), _mm256_set1_ps(64.0f));
    if (wraps) return _mm256_and_si256(_mm256_cvtps_epi32(position), _mm256_set1_epi32(mask));
    return _mm256_cvtps_epi32(_mm256_min_ps(_mm256_max_ps(position, _mm256_setzero_ps()), _mm256_set1_ps(last)));
}

// Copies two bytes of each 32 bits to all of that pixel's pairs, for the pixels `i` and `i + 4`.
AVX2_INLINE __m256i SpreadBytes(__m256i pixels, int i) {
    return _mm256_shuffle_epi8(pixels, _mm256_set1_epi16(static_cast<int16_t>(0x0100 + 0x0404 * i)));
}

// Copies the low 16 bits of each 32 to all of that pixel's channels.
AVX2_INLINE Channels SpreadWords(__m256i pixels) {
    const __m256i words = _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(pixels, 0xA0), 0xA0);
    return {_mm256_unpacklo_epi32(words, words), _mm256_unpackhi_epi32(words, words)};
}

// From `from` towards `to` by `share` / 32768 of the way.
AVX2_INLINE __m256i Mix(__m256i from, __m256i to, __m256i share) {
    return _mm256_add_epi16(from, _mm256_mulhrs_epi16(_mm256_sub_epi16(to, from), share));
}

AVX2_INLINE __m256i Filter(__m256i first, __m256i second, __m256i partS) {
    const __m256i left = _mm256_unpacklo_epi64(first, second);
    const __m256i right = _mm256_unpackhi_epi64(first, second);
    return _mm256_srli_epi16(_mm256_add_epi16(Mix(left, right, partS), _mm256_set1_epi16((128 << 7) + 64)), 7);
}

// Eight filtered texels of one level.
AVX2_INLINE Channels Sample(const FillState& state, const MipLevel& level, __m256 s, __m256 t) {
    const __m256i u = Positions(s, level.scaleS, state.wrapS, level.maskS, level.lastS);
    const __m256i v = Positions(t, level.scaleT, state.wrapT, level.maskT, level.lastT);
    const __m256i place = _mm256_blend_epi16(_mm256_srli_epi32(v, 7), _mm256_slli_epi32(u, 9), 0xAA);
    alignas(32) int32_t index[GROUP];
    _mm256_store_si256(reinterpret_cast<__m256i*>(index),
                       _mm256_madd_epi16(place, _mm256_set1_epi32(1 << 16 | level.pitch)));
    const auto at = [&](int32_t pair) AVX2_CODE {
        return reinterpret_cast<const __m128i*>(level.pairs + int64_t{TEXEL_PAIR_BYTES} * pair);
    };
    // The next row of the screen most likely takes the next row of texels.
    for (const int pixel : {0, GROUP - 1})
        _mm_prefetch(reinterpret_cast<const char*>(at(index[pixel] + level.pitch)), _MM_HINT_T0);
    const __m256i part = _mm256_srli_epi16(_mm256_slli_epi16(v, 9), 9);
    const __m256i weights = _mm256_add_epi16(_mm256_mullo_epi16(part, _mm256_set1_epi32(255)), _mm256_set1_epi32(128));
    const auto taps = [&](int i) AVX2_CODE {
        const __m256i pairs = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(at(index[i]))),
                                                      _mm_loadu_si128(at(index[i + 4])), 1);
        return _mm256_maddubs_epi16(SpreadBytes(weights, i), pairs);
    };
    const Channels partS = SpreadWords(_mm256_srli_epi16(_mm256_slli_epi16(u, 9), 1));
    return {Filter(taps(0), taps(1), partS.low), Filter(taps(2), taps(3), partS.high)};
}

// Samples one level at a time, for the pixels that take it: neighbouring pixels rarely take different levels.
[[gnu::noinline]] AVX2_CODE Channels SampleLevels(const FillState& state, __m256i lods, __m256 s, __m256 t,
                                                  __m256i drawn) {
    alignas(32) int32_t lod[GROUP];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lod), lods);
    Channels texels{};
    auto wanted = static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(drawn)));
    while (wanted != 0) {
        const int32_t next = lod[std::countr_zero(wanted)];
        const __m256i same = _mm256_cmpeq_epi32(lods, _mm256_set1_epi32(next));
        const Channels sample = Sample(state, state.texture->levels[next], s, t);
        texels.low = _mm256_blendv_epi8(texels.low, sample.low, _mm256_unpacklo_epi32(same, same));
        texels.high = _mm256_blendv_epi8(texels.high, sample.high, _mm256_unpackhi_epi32(same, same));
        wanted &= ~static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(same)));
    }
    return texels;
}

AVX2_INLINE Channels Texels(Setting& setting, const Row& row, __m256 oow, __m256 columns, __m256i drawn) {
    const FillState& state = setting.state;
    const __m256 w = _mm256_div_ps(_mm256_set1_ps(1.0f), oow);
    const __m256 s = _mm256_mul_ps(At(setting, row, PLANE_SOW, columns), w);
    const __m256 t = _mm256_mul_ps(At(setting, row, PLANE_TOW, columns), w);
    const __m256i lods = Lods(setting, row, w, columns);
    if (!_mm256_testz_si256(_mm256_xor_si256(lods, setting.lod), drawn)) {
        setting.lod = _mm256_broadcastd_epi32(_mm256_castsi256_si128(lods));
        setting.level = &state.texture->levels[_mm256_cvtsi256_si32(lods)];
        if (!_mm256_testz_si256(_mm256_xor_si256(lods, setting.lod), drawn))
            return SampleLevels(state, lods, s, t, drawn);
    }
    return Sample(state, *setting.level, s, t);
}

AVX2_INLINE Channels VertexColours(const Setting& setting, const Row& row, int32_t column) {
    const __m256i start = Broadcast(_mm_add_epi32(row.colours, Times(setting.colourStep, column)));
    const auto whole = [&](int i) AVX2_CODE {
        return _mm256_srai_epi32(_mm256_add_epi32(start, setting.colourOffsets[i]), 16);
    };
    const __m256i least = _mm256_set1_epi64x(0x0000'0001'0001'0001);
    const __m256i most = _mm256_set1_epi64x(0x00FF'0100'0100'0100);
    const auto both = [&](int i) AVX2_CODE {
        return _mm256_min_epi16(_mm256_max_epi16(_mm256_packs_epi32(whole(i), whole(i + 1)), least), most);
    };
    return {both(0), both(2)};
}

AVX2_INLINE __m256i Combine(const FillState& state, __m256i texels, __m256i vertex) {
    const __m256i scaled = _mm256_srli_epi16(_mm256_mullo_epi16(texels, vertex), 8);
    if (!state.addsAlpha) return scaled;
    const __m256i alphas = _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(vertex, 0xFF), 0xFF);
    return _mm256_min_epi16(_mm256_add_epi16(scaled, alphas), _mm256_set1_epi16(255));
}

// The share of fog, 1/32768, of eight depth codes.
AVX2_INLINE __m128i FogShares(const FillState& state, __m128i depths, __m128i drawn) {
    const __m128i entries = _mm_srli_epi16(depths, 10);
    const __m128i differ = _mm_xor_si128(entries, _mm_broadcastw_epi16(entries));
    const __m128i fraction = _mm_slli_epi16(_mm_and_si128(depths, _mm_set1_epi16(FOG_FRACTION)), 5);
    __m128i shares, steps;
    if (_mm_testz_si128(differ, drawn)) {
        const FogEntry& entry = state.fog[_mm_extract_epi16(entries, 0)];
        shares = _mm_set1_epi16(entry.share);
        steps = _mm_set1_epi16(entry.step);
    } else {
        const __m256i both = _mm256_i32gather_epi32(reinterpret_cast<const int*>(state.fog),
                                                    _mm256_cvtepu16_epi32(entries), sizeof(FogEntry));
        const __m256i low = _mm256_srai_epi32(_mm256_slli_epi32(both, 16), 16);
        const __m256i high = _mm256_srai_epi32(both, 16);
        shares = _mm_packs_epi32(_mm256_castsi256_si128(low), _mm256_extracti128_si256(low, 1));
        steps = _mm_packs_epi32(_mm256_castsi256_si128(high), _mm256_extracti128_si256(high, 1));
    }
    return _mm_add_epi16(shares, _mm_mulhrs_epi16(steps, fraction));
}

AVX2_INLINE Channels ApplyFog(const FillState& state, Channels colours, __m128i depths, __m128i drawn) {
    const Channels shares = SpreadWords(_mm256_cvtepu16_epi32(FogShares(state, depths, drawn)));
    const __m256i fog = _mm256_set1_epi64x(static_cast<int64_t>(state.fogChannels));
    return {Mix(colours.low, fog, shares.low), Mix(colours.high, fog, shares.high)};
}

AVX2_INLINE __m256i WithReference(Channels texels, int32_t reference) {
    const __m256i pixels = _mm256_packus_epi16(texels.low, texels.high);
    return _mm256_cmpeq_epi32(_mm256_srli_epi32(pixels, 24), _mm256_set1_epi32(reference));
}

// Pixels column .. column + 7 of the row, of which those inside are drawn.
AVX2_INLINE void FillGroup(Setting& setting, const Row& row, int32_t column, __m128i inside, uint32_t* colour,
                           uint16_t* depth) {
    const FillState& state = setting.state;
    const __m256 columns =
        _mm256_cvtepi32_ps(_mm256_add_epi32(_mm256_set1_epi32(column), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7)));
    const __m256 oow = At(setting, row, PLANE_OOW, columns);
    const __m128i depths = Depths(oow);
    auto* const depthPlace = reinterpret_cast<__m128i*>(depth);
    const __m128i before = _mm_loadu_si128(depthPlace);
    if (state.testsDepth) {
        const __m128i farther = _mm_cmpeq_epi16(_mm_max_epu16(depths, before), depths);
        inside = _mm_andnot_si128(farther, inside);
        if (_mm_testz_si128(inside, inside)) return;
    }
    __m256i drawn = _mm256_cvtepi16_epi32(inside);
    const Channels texels = Texels(setting, row, oow, columns, drawn);
    if (state.alphaReference >= 0) drawn = _mm256_and_si256(drawn, WithReference(texels, state.alphaReference));
    const Channels vertex = VertexColours(setting, row, column);
    Channels colours = {Combine(state, texels.low, vertex.low), Combine(state, texels.high, vertex.high)};
    if (state.hasFog) colours = ApplyFog(state, colours, depths, inside);
    const __m256i packed = _mm256_packus_epi16(colours.low, colours.high);
    const __m256i pixels = _mm256_srli_epi32(_mm256_slli_epi32(packed, 8), 8);
    auto* const place = reinterpret_cast<__m256i*>(colour);
    _mm256_storeu_si256(place, _mm256_blendv_epi8(_mm256_loadu_si256(place), pixels, drawn));
    if (!state.writesDepth) return;
    const __m128i kept = _mm_packs_epi32(_mm256_castsi256_si128(drawn), _mm256_extracti128_si256(drawn, 1));
    _mm_storeu_si128(depthPlace, _mm_blendv_epi8(before, depths, kept));
}

}  // namespace

AVX2_CODE void FillTriangleAvx2(const FillState& state, const Triangle& triangle, const Target& target,
                                int32_t firstRow, int32_t endRow) {
    Setting setting = MakeSetting(state, triangle);
    const __m128i lanes = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
    for (int32_t y = firstRow; y < endRow; ++y) {
        const Span span = SpanOf(triangle, y);
        const int32_t count = span.end - span.begin;
        if (count <= 0) continue;
        const Row row = StartRow(triangle, y, span.begin);
        uint32_t* colour = target.colour + y * CPU_PITCH + span.begin;
        uint16_t* depth = target.depth + y * CPU_PITCH + span.begin;
        for (int32_t i = 0; i < count; i += GROUP) {
            const __m128i inside = _mm_cmpgt_epi16(_mm_set1_epi16(static_cast<int16_t>(count - i)), lanes);
            FillGroup(setting, row, i, inside, colour + i, depth + i);
        }
    }
}

#else

#include "boards/cpu/triangle.h"

void FillTriangleAvx2(const FillState&, const Triangle&, const Target&, int32_t, int32_t) {}

#endif
