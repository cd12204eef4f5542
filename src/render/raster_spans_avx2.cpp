// The texel and light positions of sixteen pixels are worked out at once, in 16-bit lanes: their wrap-around loses
// nothing, because a pixel reads only the low 16 bits. The texels and colours themselves are scalar loads, which beat
// gathers. Both passes run over a batch of blocks, so that the long latency of the first (divisions, conversions) hides
// behind that of its neighbours and the second is bound by its loads alone.
#ifdef __x86_64__

#include "render/raster_spans.h"
#include "render/render_tables.h"

#include <algorithm>
#include <cstring>
#include <immintrin.h>

#define AVX2_CODE [[gnu::target("avx2")]]

namespace {

constexpr int32_t WORD_PIXELS = 8;  // shaded and stored together

struct alignas(16) Word {
    uint16_t offsets[WORD_PIXELS];  // of the texels
    uint16_t shades[WORD_PIXELS];   // light level x 256
    uint8_t* pixels;
    uint8_t count;    // of an incomplete word
    uint8_t retreat;  // it is stored this much further left, to end inside the frame
    uint8_t covered;  // its pixels that are left as they are, one bit each
};

constexpr int32_t BATCH_PIXELS = 640;  // longer spans are left to the portable routine
constexpr int32_t BATCH_WORDS = BATCH_PIXELS / WORD_PIXELS;
constexpr int32_t BATCH_PARTS = 120;
constexpr int32_t SPAN_MOST_PARTS = BATCH_WORDS + 1;

// Complete and incomplete words lie apart, so that drawing them takes no branch that depends on a span's length. A
// block writes two complete words and keeps as many as it has.
struct Batch {
    Word words[BATCH_WORDS + 2];
    Word parts[BATCH_PARTS];
    int32_t wordCount, partCount;
};

// Where a span lies in the frame.
struct Place {
    uint8_t* pixels;
    int32_t x;
    const CoverRow* cover;  // null: nothing is covered
};

// u, v and light of a pixel in the low three lanes, 8.8 fixed point.
typedef __m128i Values;

AVX2_CODE inline __m128 LastLane(__m128 vector) {
    return _mm_permute_ps(vector, 0xFF);
}

AVX2_CODE inline Values DividedByDepth(__m128 overDepth) {
    const __m128 depths = _mm_div_ps(_mm_set1_ps(1.0f), overDepth);
    return _mm_cvtps_epi32(_mm_mul_ps(overDepth, LastLane(depths)));
}

// The step that leads from value to target in 1 / factor pixels.
AVX2_CODE inline Values StepTowards(__m128 target, Values value, float factor) {
    const __m128 distance = _mm_sub_ps(target, _mm_cvtepi32_ps(value));
    return _mm_cvtps_epi32(_mm_mul_ps(distance, _mm_set1_ps(factor)));
}

// The low half of the given lane at each of sixteen pixels.
template <int LANE>
AVX2_CODE inline __m256i AtPixels(Values value, Values step) {
    const __m256i select = _mm256_set1_epi16(static_cast<int16_t>(LANE * 4 | (LANE * 4 + 1) << 8));
    const __m256i pixel = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m256i start = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(value), select);
    const __m256i steps = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(step), select);
    return _mm256_add_epi16(start, _mm256_mullo_epi16(steps, pixel));
}

AVX2_CODE inline void PutWord(Word& word, uint8_t* pixels, __m128i offsets, __m128i shades) {
    _mm_store_si128(reinterpret_cast<__m128i*>(word.offsets), offsets);
    _mm_store_si128(reinterpret_cast<__m128i*>(word.shades), shades);
    word.pixels = pixels;
}

struct Block {
    __m128i offsets[2], shades[2];  // of two words
};

AVX2_CODE inline Block MakeBlock(Values value, Values step, uint32_t textureMask) {
    const __m256i highByte = _mm256_set1_epi16(static_cast<int16_t>(0xFF00));
    const __m256i column = _mm256_srli_epi16(AtPixels<0>(value, step), 8);
    const __m256i line = _mm256_and_si256(AtPixels<1>(value, step), highByte);
    const __m256i mask = _mm256_set1_epi16(static_cast<int16_t>(textureMask));
    const __m256i offsets = _mm256_and_si256(_mm256_or_si256(line, column), mask);
    const __m256i shades = _mm256_and_si256(AtPixels<2>(value, step), highByte);
    return {{_mm256_castsi256_si128(offsets), _mm256_extracti128_si256(offsets, 1)},
            {_mm256_castsi256_si128(shades), _mm256_extracti128_si256(shades, 1)}};
}

// A part of a word that lies at column x.
AVX2_CODE inline void AddPart(Batch& batch, const Block& block, int32_t word, const Place& place, int32_t count,
                              uint32_t covered) {
    const __m128i isSecond = _mm_set1_epi32(-word);
    Word& part = batch.parts[batch.partCount++];
    PutWord(part, place.pixels, _mm_blendv_epi8(block.offsets[0], block.offsets[1], isSecond),
            _mm_blendv_epi8(block.shades[0], block.shades[1], isSecond));
    part.count = static_cast<uint8_t>(count);
    part.retreat = static_cast<uint8_t>(std::max(0, place.x + WORD_PIXELS - ScreenWidth));
    part.covered = static_cast<uint8_t>(covered);
}

// 1..16 pixels of which some are covered.
AVX2_CODE inline void AddCoveredBlock(Batch& batch, const Block& block, const Place& place, int32_t count,
                                      uint32_t covered) {
    for (int32_t word = 0; word * WORD_PIXELS < count; word++) {
        const int32_t skipped = word * WORD_PIXELS;
        const int32_t rest = std::min(count - skipped, WORD_PIXELS);
        const uint32_t bits = covered >> skipped & 0xFF;
        const uint32_t all = 0xFFu >> (WORD_PIXELS - rest);
        const Place at = {place.pixels + skipped, place.x + skipped, nullptr};
        if ((bits & all) == 0 && rest == WORD_PIXELS)
            PutWord(batch.words[batch.wordCount++], at.pixels, block.offsets[word], block.shades[word]);
        else if ((bits & all) != all)
            AddPart(batch, block, word, at, rest, bits);
    }
}

// 1..16 pixels.
AVX2_CODE inline void AddBlock(Batch& batch, const Place& place, int32_t count, Values value, Values step,
                               uint32_t textureMask) {
    const Block block = MakeBlock(value, step, textureMask);
    const uint32_t covered = place.cover != nullptr ? place.cover->At(place.x) : 0;
    if (covered != 0) return AddCoveredBlock(batch, block, place, count, covered);
    Word* const words = batch.words + batch.wordCount;
    PutWord(words[0], place.pixels, block.offsets[0], block.shades[0]);
    PutWord(words[1], place.pixels + WORD_PIXELS, block.offsets[1], block.shades[1]);
    const int32_t complete = count / WORD_PIXELS;
    batch.wordCount += complete;
    if (count % WORD_PIXELS == 0) return;
    const int32_t skipped = complete * WORD_PIXELS;
    AddPart(batch, block, complete, {place.pixels + skipped, place.x + skipped, nullptr}, count % WORD_PIXELS, 0);
}

AVX2_CODE inline void AddShortSpan(Batch& batch, const Place& place, int32_t count, __m128 start, __m128 right,
                                   float perPixel, uint32_t textureMask) {
    // One division serves both ends.
    const __m128 depths = _mm_div_ps(_mm_set1_ps(1.0f), _mm_unpackhi_ps(start, right));
    const __m128 startDepth = _mm_permute_ps(depths, _MM_SHUFFLE(2, 2, 2, 2));
    const Values value = _mm_cvtps_epi32(_mm_mul_ps(start, startDepth));
    const Values step = StepTowards(_mm_mul_ps(right, LastLane(depths)), value, perPixel);
    AddBlock(batch, place, count, value, step, textureMask);
}

AVX2_CODE inline void AddLongSpan(Batch& batch, Place place, int32_t count, __m128 position, __m128 right,
                                  __m128 change, float perPixel, uint32_t textureMask) {
    const __m128 blockChange = _mm_mul_ps(_mm_mul_ps(_mm_set1_ps(SPAN_BLOCK), change), _mm_set1_ps(perPixel));
    Values value = DividedByDepth(position);
    bool isKnown = true;  // the value at the position; blocks that are covered need none
    for (; count >= SPAN_BLOCK; count -= SPAN_BLOCK, place.pixels += SPAN_BLOCK, place.x += SPAN_BLOCK) {
        const __m128 begin = position;
        position = _mm_add_ps(position, blockChange);
        const bool isCovered = place.cover != nullptr && place.cover->Holds(place.x, place.x + SPAN_BLOCK);
        if (!isCovered) {
            if (!isKnown) value = DividedByDepth(begin);
            const Values end = DividedByDepth(position);
            AddBlock(batch, place, SPAN_BLOCK, value, _mm_srai_epi32(_mm_sub_epi32(end, value), 4), textureMask);
            value = end;
        }
        isKnown = !isCovered;
    }
    if (count == 0) return;
    if (!isKnown) value = DividedByDepth(position);
    const Values step = StepTowards(_mm_div_ps(right, LastLane(right)), value, ReciprocalTable[count]);
    AddBlock(batch, place, count, value, step, textureMask);
}

AVX2_CODE inline void AddRow(Batch& batch, const EdgeRow& row, const Place& place, int32_t count,
                             uint32_t textureMask) {
    const float perPixel = ReciprocalTable[count];
    const float preStep = static_cast<float>(place.x * 65536 - row.left.x) / 65536;
    const __m128 left = _mm_loadu_ps(&row.left.u);
    const __m128 right = _mm_loadu_ps(&row.right.u);
    const __m128 change = _mm_sub_ps(right, left);
    const __m128 start = _mm_add_ps(left, _mm_mul_ps(change, _mm_set1_ps(preStep * perPixel)));
    if (count < SPAN_BLOCK)
        AddShortSpan(batch, place, count, start, right, perPixel, textureMask);
    else
        AddLongSpan(batch, place, count, start, right, change, perPixel, textureMask);
}

// One pixel a byte; `found` are their texels.
struct Pixels {
    __m128i colours, found;
};

// The table's bytes at four 16-bit indices each.
AVX2_CODE inline __m128i Lookup(const uint8_t* table, uint64_t first, uint64_t second) {
    __m128i bytes = _mm_cvtsi32_si128(table[first & 0xFFFF]);
    bytes = _mm_insert_epi8(bytes, table[first >> 16 & 0xFFFF], 1);
    bytes = _mm_insert_epi8(bytes, table[first >> 32 & 0xFFFF], 2);
    bytes = _mm_insert_epi8(bytes, table[first >> 48], 3);
    bytes = _mm_insert_epi8(bytes, table[second & 0xFFFF], 4);
    bytes = _mm_insert_epi8(bytes, table[second >> 16 & 0xFFFF], 5);
    bytes = _mm_insert_epi8(bytes, table[second >> 32 & 0xFFFF], 6);
    return _mm_insert_epi8(bytes, table[second >> 48], 7);
}

AVX2_CODE inline Pixels ShadeWord(const Word& word, const uint8_t* texels) {
    uint64_t offsets[2];
    std::memcpy(offsets, word.offsets, sizeof offsets);
    Pixels pixels;
    pixels.found = Lookup(texels, offsets[0], offsets[1]);
    const __m128i shades = _mm_load_si128(reinterpret_cast<const __m128i*>(word.shades));
    const __m128i indices = _mm_or_si128(_mm_cvtepu8_epi16(pixels.found), shades);
    pixels.colours = Lookup(ShadeTable, static_cast<uint64_t>(_mm_cvtsi128_si64(indices)),
                            static_cast<uint64_t>(_mm_extract_epi64(indices, 1)));
    return pixels;
}

AVX2_CODE inline __m128i* Destination(uint8_t* pixels) {
    return reinterpret_cast<__m128i*>(pixels);
}

template <TexelZero ZERO>
AVX2_CODE inline void StoreWord(uint8_t* destination, Pixels pixels) {
    if (ZERO == TexelZero::Skipped) {
        const __m128i holes = _mm_cmpeq_epi8(pixels.found, _mm_setzero_si128());
        pixels.colours = _mm_blendv_epi8(pixels.colours, _mm_loadl_epi64(Destination(destination)), holes);
    }
    _mm_storel_epi64(Destination(destination), pixels.colours);
}

// 0xFF for each bit.
AVX2_CODE inline __m128i BytesOf(uint32_t bits) {
    const __m128i bit = _mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201));
    return _mm_cmpeq_epi8(_mm_and_si128(_mm_set1_epi8(static_cast<char>(bits)), bit), bit);
}

// Takes the pixels of a word in whose texels are not 0.
AVX2_CODE inline void CoverFound(CoverRow* cover, const Word& word, int32_t count, Pixels pixels) {
    // In 32 bits: a division of 64 takes longer than all the rest.
    const auto place = static_cast<uint32_t>(word.pixels - FrameBuffer);
    const auto pitch = static_cast<uint32_t>(FramePitch);
    const int holes = _mm_movemask_epi8(_mm_cmpeq_epi8(pixels.found, _mm_setzero_si128()));
    const uint32_t found = ~static_cast<uint32_t>(holes) & (0xFFu >> (WORD_PIXELS - count));
    cover[place / pitch].AddBits(static_cast<int32_t>(place % pitch), found);
}

// The first pixels of a word; what lies beside them is stored as it was.
template <TexelZero ZERO>
AVX2_CODE inline void StorePart(const Word& word, Pixels pixels) {
    alignas(32) static constexpr uint8_t OUTSIDE[3 * WORD_PIXELS] = {
        255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255};
    uint8_t* const destination = word.pixels - word.retreat;
    const uint8_t* const mask = OUTSIDE + WORD_PIXELS - word.retreat;
    __m128i kept = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask));
    kept = _mm_or_si128(kept, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask + WORD_PIXELS - word.count)));
    const __m128i shift = _mm_cvtsi32_si128(8 * word.retreat);
    kept = _mm_or_si128(kept, _mm_sll_epi64(BytesOf(word.covered), shift));
    if (ZERO == TexelZero::Skipped) {
        const __m128i holes = _mm_cmpeq_epi8(pixels.found, _mm_setzero_si128());
        kept = _mm_or_si128(kept, _mm_sll_epi64(holes, shift));
    }
    const __m128i before = _mm_loadl_epi64(Destination(destination));
    const __m128i colours = _mm_sll_epi64(pixels.colours, shift);
    _mm_storel_epi64(Destination(destination), _mm_blendv_epi8(colours, before, kept));
}

template <TexelZero ZERO>
AVX2_CODE inline void DrawBatch(Batch& batch, const uint8_t* texels, CoverRow* cover) {
    for (int32_t i = 0; i < batch.wordCount; i++) {
        const Pixels pixels = ShadeWord(batch.words[i], texels);
        StoreWord<ZERO>(batch.words[i].pixels, pixels);
        if (ZERO == TexelZero::Skipped && cover != nullptr) CoverFound(cover, batch.words[i], WORD_PIXELS, pixels);
    }
    for (int32_t i = 0; i < batch.partCount; i++) {
        const Word& part = batch.parts[i];
        const Pixels pixels = ShadeWord(part, texels);
        StorePart<ZERO>(part, pixels);
        if (ZERO == TexelZero::Skipped && cover != nullptr) CoverFound(cover, part, part.count, pixels);
    }
    batch.wordCount = batch.partCount = 0;
}

template <TexelZero ZERO>
AVX2_CODE void FillRows(const EdgeRows& rows, SpanTexture texture, CoverRow* cover) {
    Batch batch;
    batch.wordCount = batch.partCount = 0;
    for (int32_t y = rows.first; y < rows.end; y++) {
        const EdgeRow& row = rows.table[y];
        const int32_t begin = CeilFixed(row.left.x);
        const int32_t end = CeilFixed(row.right.x);
        const int32_t count = end - begin;
        if (count <= 0) continue;
        if (begin < 0 || end > ScreenWidth || count > BATCH_PIXELS) {
            FillRowsPortable({rows.table, y, y + 1}, texture, ZERO, cover);
            continue;
        }
        if (cover != nullptr && cover[y].Holds(begin, end)) continue;
        if (batch.wordCount + count / WORD_PIXELS > BATCH_WORDS || batch.partCount + SPAN_MOST_PARTS > BATCH_PARTS)
            DrawBatch<ZERO>(batch, texture.texels, cover);
        uint8_t* const pixels = FrameBuffer + static_cast<ptrdiff_t>(y) * FramePitch + begin;
        AddRow(batch, row, {pixels, begin, cover != nullptr ? cover + y : nullptr}, count, texture.mask);
        if (ZERO == TexelZero::Drawn && cover != nullptr) cover[y].Add(begin, end);
    }
    DrawBatch<ZERO>(batch, texture.texels, cover);
}

}  // namespace

void FillRowsAvx2(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
    if (texelZero == TexelZero::Drawn)
        FillRows<TexelZero::Drawn>(rows, texture, cover);
    else
        FillRows<TexelZero::Skipped>(rows, texture, cover);
}

#endif
