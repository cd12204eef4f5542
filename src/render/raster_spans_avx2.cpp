// Spans are set up eight at a time, one to a lane: the divisions and conversions that rule short spans cost little more
// for eight than for one. The texel and light positions of sixteen pixels are then worked out at once, in 16-bit lanes:
// their wrap-around loses nothing, because a pixel reads only the low 16 bits. The texels and colours themselves are
// scalar loads, which are faster than gathers, and are read a batch at a time, long after their positions were stored.
//
// With a cover, opaque spans of all polygons wait together for their lanes to fill up: no pixel is drawn twice, so it
// makes no difference when. What a word stores beside its own pixels is what lay there.
#ifdef __x86_64__

#include "render/raster_spans.h"
#include "render/render_tables.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <immintrin.h>

#define AVX2_CODE [[gnu::target("avx2")]]

namespace {

constexpr int32_t LANES = 8;
constexpr int32_t WORD_PIXELS = 8;   // pixels stored together
constexpr int32_t PIXELS_MAX = 640;  // longer spans are left to the portable routine
constexpr int32_t BLOCKS_MAX = PIXELS_MAX / SPAN_BLOCK + 1;

// For each lane: u, v and light at a block's first pixel and their steps, the low 16 bits of each written twice.
struct alignas(32) LaneBlocks {
    uint32_t value[3][LANES], step[3][LANES];
};

// Three blocks, so that a piece of the cover lies in eight bytes, even with up to seven bits before it.
constexpr int32_t PIECE_BLOCKS = 3;
constexpr int32_t PIECE_PIXELS = PIECE_BLOCKS * SPAN_BLOCK;
constexpr int32_t PIECES_MAX = (BLOCKS_MAX + PIECE_BLOCKS - 1) / PIECE_BLOCKS;  // of a span

// Up to PIECE_PIXELS pixels of a span that waits for its lanes.
struct Piece {
    const uint32_t* lane;  // the first value of its first block
    uint8_t* pixels;
    SpanTexture texture;
    uint64_t drawn;  // a bit for each pixel that is drawn
};

// Eight pixels whose positions are known and whose texels are not read yet.
struct alignas(32) Word {
    uint32_t shades[WORD_PIXELS];   // light level x 256
    uint16_t offsets[WORD_PIXELS];  // offsets of the texels from the texture's first one
    uint8_t* pixels;
    const uint8_t* texels;
    uint64_t drawn;  // 0xFF for each pixel that is drawn
};

constexpr int32_t WORDS_MAX = 128;

struct Queue {
    // The spans at both their ends, one to a lane.
    float left[LANES][4], right[LANES][4];  // u, v, light and 1, each divided by depth
    int32_t leftX[LANES], rightX[LANES];
    int32_t laneCount;
    LaneBlocks laneBlocks[BLOCKS_MAX];  // the incomplete one of a lane stands behind its complete ones

    // The pieces of which any pixel is drawn. The last entry of each array may be written without being counted.
    Piece pieces[LANES * PIECES_MAX + 1];
    int32_t pieceCount;
    Word words[WORDS_MAX + 1];
    int32_t wordCount;
};

// The spans that wait. Opaque ones and those with holes have a set each: different routines draw the two.
template <TexelZero ZERO>
Queue queue;

// Each quantity of eight spans, one to a lane.
struct OverDepth {
    __m256 u, v, light, inverseDepth;
};
struct Values {
    __m256i u, v, light;
};

AVX2_CODE inline __m256 TwoLanes(const float* low, const float* high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(low)), _mm_loadu_ps(high), 1);
}

AVX2_CODE inline OverDepth LoadLanes(const float (&lanes)[LANES][4]) {
    const __m256 a = TwoLanes(lanes[0], lanes[4]);
    const __m256 b = TwoLanes(lanes[1], lanes[5]);
    const __m256 c = TwoLanes(lanes[2], lanes[6]);
    const __m256 d = TwoLanes(lanes[3], lanes[7]);
    const __m256 uvOfAc = _mm256_unpacklo_ps(a, c), restOfAc = _mm256_unpackhi_ps(a, c);
    const __m256 uvOfBd = _mm256_unpacklo_ps(b, d), restOfBd = _mm256_unpackhi_ps(b, d);
    return {_mm256_unpacklo_ps(uvOfAc, uvOfBd), _mm256_unpackhi_ps(uvOfAc, uvOfBd),
            _mm256_unpacklo_ps(restOfAc, restOfBd), _mm256_unpackhi_ps(restOfAc, restOfBd)};
}

// The columns are loaded one by one: a load of all at once would wait until all have been stored.
AVX2_CODE inline __m256i LoadColumns(const int32_t (&x)[LANES]) {
    return _mm256_setr_epi32(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7]);
}

AVX2_CODE inline __m256i CeilColumns(__m256i fixed) {
    return _mm256_srai_epi32(_mm256_add_epi32(fixed, _mm256_set1_epi32(0xFFFF)), 16);
}

// Gives the same bits as ReciprocalTable.
AVX2_CODE inline __m256 Reciprocal(__m256i number) {
    return _mm256_div_ps(_mm256_set1_ps(1.0f), _mm256_cvtepi32_ps(number));
}

AVX2_CODE inline Values DividedByDepth(const OverDepth& position) {
    const __m256 depth = _mm256_div_ps(_mm256_set1_ps(1.0f), position.inverseDepth);
    return {_mm256_cvtps_epi32(_mm256_mul_ps(position.u, depth)), _mm256_cvtps_epi32(_mm256_mul_ps(position.v, depth)),
            _mm256_cvtps_epi32(_mm256_mul_ps(position.light, depth))};
}

AVX2_CODE inline __m256i BlockStep(__m256i from, __m256i to) {
    return _mm256_srai_epi32(_mm256_sub_epi32(to, from), 4);
}

// The step that leads from value to target in 1 / factor pixels.
AVX2_CODE inline __m256i StepTowards(__m256 target, __m256i value, __m256 factor) {
    return _mm256_cvtps_epi32(_mm256_mul_ps(_mm256_sub_ps(target, _mm256_cvtepi32_ps(value)), factor));
}

AVX2_CODE inline void StoreTwice(uint32_t* lanes, __m256i value) {
    const __m256i twice = _mm256_blend_epi16(value, _mm256_slli_epi32(value, 16), 0xAA);
    _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), twice);
}

AVX2_CODE inline void StoreBlocks(LaneBlocks& block, const Values& value, const Values& step) {
    StoreTwice(block.value[0], value.u);
    StoreTwice(block.value[1], value.v);
    StoreTwice(block.value[2], value.light);
    StoreTwice(block.step[0], step.u);
    StoreTwice(block.step[1], step.v);
    StoreTwice(block.step[2], step.light);
}

// The value that the last block of each span leads to. The quotient and the product with the reciprocal differ in
// their last bit.
AVX2_CODE inline OverDepth SpanEnds(const OverDepth& right, __m256 isLong) {
    const __m256 depth = _mm256_div_ps(_mm256_set1_ps(1.0f), right.inverseDepth);
    OverDepth end = {_mm256_mul_ps(right.u, depth), _mm256_mul_ps(right.v, depth), _mm256_mul_ps(right.light, depth),
                     right.inverseDepth};
    if (_mm256_movemask_ps(isLong) == 0) return end;
    end.u = _mm256_blendv_ps(end.u, _mm256_div_ps(right.u, right.inverseDepth), isLong);
    end.v = _mm256_blendv_ps(end.v, _mm256_div_ps(right.v, right.inverseDepth), isLong);
    end.light = _mm256_blendv_ps(end.light, _mm256_div_ps(right.light, right.inverseDepth), isLong);
    return end;
}

AVX2_CODE inline OverDepth Minus(const OverDepth& a, const OverDepth& b) {
    return {_mm256_sub_ps(a.u, b.u), _mm256_sub_ps(a.v, b.v), _mm256_sub_ps(a.light, b.light),
            _mm256_sub_ps(a.inverseDepth, b.inverseDepth)};
}

AVX2_CODE inline OverDepth Plus(const OverDepth& a, const OverDepth& b) {
    return {_mm256_add_ps(a.u, b.u), _mm256_add_ps(a.v, b.v), _mm256_add_ps(a.light, b.light),
            _mm256_add_ps(a.inverseDepth, b.inverseDepth)};
}

AVX2_CODE inline OverDepth Times(const OverDepth& a, __m256 factor) {
    return {_mm256_mul_ps(a.u, factor), _mm256_mul_ps(a.v, factor), _mm256_mul_ps(a.light, factor),
            _mm256_mul_ps(a.inverseDepth, factor)};
}

AVX2_CODE inline Values StepsTowards(const OverDepth& end, const Values& value, __m256 factor) {
    return {StepTowards(end.u, value.u, factor), StepTowards(end.v, value.v, factor),
            StepTowards(end.light, value.light, factor)};
}

AVX2_CODE inline Values Choose(const Values& otherwise, const Values& where, __m256i condition) {
    return {_mm256_blendv_epi8(otherwise.u, where.u, condition), _mm256_blendv_epi8(otherwise.v, where.v, condition),
            _mm256_blendv_epi8(otherwise.light, where.light, condition)};
}

AVX2_CODE void SetUpLanes(Queue& spans, int32_t laneCount) {
    for (int32_t lane = laneCount; lane < LANES; ++lane)
        spans.leftX[lane] = spans.rightX[lane] = 0;
    const OverDepth left = LoadLanes(spans.left);
    const OverDepth right = LoadLanes(spans.right);
    const OverDepth change = Minus(right, left);
    const __m256i leftX = LoadColumns(spans.leftX);
    const __m256i begin = CeilColumns(leftX);
    const __m256i count = _mm256_sub_epi32(CeilColumns(LoadColumns(spans.rightX)), begin);
    const __m256 perPixel = Reciprocal(count);
    const __m256 preStep = _mm256_mul_ps(_mm256_cvtepi32_ps(_mm256_sub_epi32(_mm256_slli_epi32(begin, 16), leftX)),
                                         _mm256_set1_ps(1.0f / 65536));
    OverDepth position = Plus(left, Times(change, _mm256_mul_ps(preStep, perPixel)));
    Values value = DividedByDepth(position);
    const __m256i blockCounts = _mm256_srai_epi32(count, 4);
    const __m256i isLong = _mm256_cmpgt_epi32(blockCounts, _mm256_setzero_si256());
    const OverDepth end = SpanEnds(right, _mm256_castsi256_ps(isLong));
    if (_mm256_testz_si256(isLong, isLong))
        return StoreBlocks(spans.laneBlocks[0], value, StepsTowards(end, value, perPixel));

    const OverDepth blockChange = Times(Times(change, _mm256_set1_ps(SPAN_BLOCK)), perPixel);
    const __m256 perRestPixel = Reciprocal(_mm256_and_si256(count, _mm256_set1_epi32(SPAN_BLOCK - 1)));
    __m256i number = _mm256_setzero_si256();
    for (LaneBlocks* lanes = spans.laneBlocks;; ++lanes) {
        const __m256i isComplete = _mm256_cmpgt_epi32(blockCounts, number);
        const Values restStep = StepsTowards(end, value, perRestPixel);
        if (_mm256_testz_si256(isComplete, isComplete)) return StoreBlocks(*lanes, value, restStep);
        position = Plus(position, blockChange);
        const Values next = DividedByDepth(position);
        const Values step = {BlockStep(value.u, next.u), BlockStep(value.v, next.v),
                             BlockStep(value.light, next.light)};
        StoreBlocks(*lanes, value, Choose(restStep, step, isComplete));
        value = next;
        number = _mm256_sub_epi32(number, _mm256_set1_epi32(-1));
    }
}

// One value of a lane's block at its sixteen pixels.
AVX2_CODE inline __m256i AtPixels(const uint32_t* value) {
    constexpr ptrdiff_t STEP = 3 * LANES;
    const __m256i pixel = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m256i steps = _mm256_set1_epi32(static_cast<int32_t>(value[STEP]));
    return _mm256_add_epi16(_mm256_set1_epi32(static_cast<int32_t>(*value)), _mm256_mullo_epi16(steps, pixel));
}

// For each byte: the word with a byte 0xFF for each bit that is set.
constexpr std::array<uint64_t, 256> BYTES_OF_BITS = [] {
    std::array<uint64_t, 256> bytes{};
    for (uint32_t bits = 0; bits < 256; ++bits)
        for (uint32_t i = 0; i < WORD_PIXELS; ++i)
            if (bits >> i & 1) bytes[bits] |= uint64_t{0xFF} << (8 * i);
    return bytes;
}();

AVX2_CODE inline void PutWord(Word& word, __m128i offsets, __m128i shades, uint8_t* pixels, const uint8_t* texels,
                              uint64_t drawn) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(word.shades), _mm256_cvtepu16_epi32(shades));
    _mm_store_si128(reinterpret_cast<__m128i*>(word.offsets), offsets);
    word.pixels = pixels;
    word.texels = texels;
    word.drawn = BYTES_OF_BITS[drawn & 0xFF];
}

// Adds those of a block's two words of which any pixel is drawn; returns the place behind them.
AVX2_CODE inline Word* AddWords(const uint32_t* lane, uint8_t* pixels, const SpanTexture& texture, uint64_t drawn,
                                Word* word) {
    const __m256i highByte = _mm256_set1_epi16(static_cast<int16_t>(0xFF00));
    const __m256i column = _mm256_srli_epi16(AtPixels(lane), 8);
    const __m256i line = _mm256_and_si256(AtPixels(lane + LANES), highByte);
    const __m256i shades = _mm256_and_si256(AtPixels(lane + 2 * LANES), highByte);
    const __m256i mask = _mm256_set1_epi16(static_cast<int16_t>(texture.mask));
    const __m256i offsets = _mm256_and_si256(_mm256_or_si256(line, column), mask);
    PutWord(*word, _mm256_castsi256_si128(offsets), _mm256_castsi256_si128(shades), pixels, texture.texels, drawn);
    word += (drawn & 0xFF) != 0;
    if ((drawn & 0xFF00) == 0) return word;
    PutWord(*word, _mm256_extracti128_si256(offsets, 1), _mm256_extracti128_si256(shades, 1), pixels + WORD_PIXELS,
            texture.texels, drawn >> WORD_PIXELS);
    return word + 1;
}

AVX2_CODE inline Word* AddWords(const Piece& piece, Word* word) {
    constexpr ptrdiff_t NEXT_BLOCK = sizeof(LaneBlocks) / sizeof(uint32_t);
    const uint32_t* lane = piece.lane;
    uint8_t* pixels = piece.pixels;
    uint64_t drawn = piece.drawn;
    do {
        if ((drawn & 0xFFFF) != 0) word = AddWords(lane, pixels, piece.texture, drawn, word);
        lane += NEXT_BLOCK;
        pixels += SPAN_BLOCK;
        drawn >>= SPAN_BLOCK;
    } while (drawn != 0);
    return word;
}

AVX2_CODE inline __m128i* Bytes(uint8_t* bytes) {
    return reinterpret_cast<__m128i*>(bytes);
}

// Gathers eight bytes into a word. They are given as char because the intrinsic, a macro without optimisation, changes
// their sign, of which g++ warns.
template <typename ByteOf>
AVX2_CODE inline __m128i Gather(ByteOf byteOf) {
    __m128i bytes = _mm_cvtsi32_si128(byteOf(0));
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(1)), 1);
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(2)), 2);
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(3)), 3);
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(4)), 4);
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(5)), 5);
    bytes = _mm_insert_epi8(bytes, static_cast<char>(byteOf(6)), 6);
    return _mm_insert_epi8(bytes, static_cast<char>(byteOf(7)), 7);
}

AVX2_CODE inline void TakeDrawn(CoverRow* cover, const uint8_t* pixels, __m128i drawn) {
    // The remainder is taken of 32 bits: a division of 64 bits takes longer than all the rest.
    const auto place = static_cast<uint32_t>(pixels - FrameBuffer);
    const auto pitch = static_cast<uint32_t>(FramePitch);
    const auto bits = static_cast<uint32_t>(_mm_movemask_epi8(drawn));
    cover[place / pitch].AddBits(static_cast<int32_t>(place % pitch), bits);
}

// The pixels of a word that are not drawn are stored as they were read.
template <TexelZero ZERO>
AVX2_CODE inline void DrawWord(const Word& word, CoverRow* cover) {
    const uint8_t* const texels = word.texels;
    __m128i drawn = _mm_cvtsi64_si128(static_cast<int64_t>(word.drawn));
    if (ZERO == TexelZero::Skipped) {
        const __m128i found = Gather([&](int32_t i) { return texels[word.offsets[i]]; });
        drawn = _mm_andnot_si128(_mm_cmpeq_epi8(found, _mm_setzero_si128()), drawn);
    }
    const __m128i colours = Gather([&](int32_t i) { return ShadeTable[word.shades[i] | texels[word.offsets[i]]]; });
    const __m128i before = _mm_loadl_epi64(Bytes(word.pixels));
    _mm_storel_epi64(Bytes(word.pixels), _mm_blendv_epi8(before, colours, drawn));
    if (ZERO == TexelZero::Skipped && cover != nullptr) TakeDrawn(cover, word.pixels, drawn);
}

template <TexelZero ZERO>
AVX2_CODE void DrawWords(CoverRow* cover) {
    Queue& spans = queue<ZERO>;
    const Word* const end = spans.words + spans.wordCount;
    for (const Word* word = spans.words; word != end; ++word)
        DrawWord<ZERO>(*word, cover);
    spans.wordCount = 0;
}

// Takes the lanes and pieces out of the queue; piecesEnd is behind the last of them.
template <TexelZero ZERO>
AVX2_CODE void AddWordsOfLanes(int32_t laneCount, const Piece* piecesEnd, CoverRow* cover) {
    Queue& spans = queue<ZERO>;
    SetUpLanes(spans, laneCount);
    Word* word = spans.words + spans.wordCount;
    for (const Piece* piece = spans.pieces; piece != piecesEnd; ++piece) {
        if (word > spans.words + WORDS_MAX - PIECE_PIXELS / WORD_PIXELS) {
            spans.wordCount = static_cast<int32_t>(word - spans.words);
            DrawWords<ZERO>(cover);
            word = spans.words;
        }
        word = AddWords(*piece, word);
    }
    spans.wordCount = static_cast<int32_t>(word - spans.words);
}

template <TexelZero ZERO>
AVX2_CODE void DrawAll(CoverRow* cover) {
    Queue& spans = queue<ZERO>;
    if (spans.laneCount > 0) AddWordsOfLanes<ZERO>(spans.laneCount, spans.pieces + spans.pieceCount, cover);
    spans.laneCount = spans.pieceCount = 0;
    DrawWords<ZERO>(cover);
}

// Where the rest of a span lies.
struct Place {
    uint8_t* pixels;
    int32_t x, count;
};

// The bits of the next pixels of a span, at most PIECE_PIXELS, that the cover does not hold. It takes them in, unless
// they may turn out to be holes. All at once: a load of what two stores have written in part would wait for both.
template <TexelZero ZERO, bool HAS_COVER>
AVX2_CODE inline uint64_t TakePixels(CoverRow* cover, const Place& place) {
    const uint64_t wanted = ~uint64_t{0} >> (64 - std::min(place.count, PIECE_PIXELS));
    if (!HAS_COVER) return wanted;
    const auto column = static_cast<uint32_t>(place.x);
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(cover->words) + column / 8;
    uint64_t held;
    std::memcpy(&held, bytes, sizeof held);
    const uint64_t drawn = wanted & ~(held >> column % 8);
    if (ZERO == TexelZero::Drawn) {
        held |= drawn << column % 8;
        std::memcpy(bytes, &held, sizeof held);
    }
    return drawn;
}

AVX2_CODE inline void PutLane(Queue& spans, int32_t lane, const EdgeRow& row) {
    _mm_storeu_ps(spans.left[lane], _mm_loadu_ps(&row.left.u));
    _mm_storeu_ps(spans.right[lane], _mm_loadu_ps(&row.right.u));
    spans.leftX[lane] = row.left.x;
    spans.rightX[lane] = row.right.x;
}

// Adds the pieces of which any pixel is drawn; returns the place behind them.
template <TexelZero ZERO, bool HAS_COVER>
AVX2_CODE inline Piece* AddPieces(Piece* piece, const uint32_t* lane, Place place, const SpanTexture& texture,
                                  CoverRow* cover) {
    constexpr ptrdiff_t NEXT_PIECE = PIECE_BLOCKS * sizeof(LaneBlocks) / sizeof(uint32_t);
    for (;;) {
        const uint64_t drawn = TakePixels<ZERO, HAS_COVER>(cover, place);
        *piece = {lane, place.pixels, texture, drawn};
        piece += drawn != 0;
        if (place.count <= PIECE_PIXELS) return piece;
        place = {place.pixels + PIECE_PIXELS, place.x + PIECE_PIXELS, place.count - PIECE_PIXELS};
        lane += NEXT_PIECE;
    }
}

// Not inline, for the sake of the loop's registers.
[[gnu::noinline, gnu::cold]] void FillPortably(const EdgeRow* table, int32_t row, const SpanTexture& texture,
                                               TexelZero texelZero, CoverRow* cover) {
    FillRowsPortable({table, row, row + 1}, texture, texelZero, cover);
}

// Spans outside the frame, too long ones and those at the frame's last pixels, where a word may reach beyond them, are
// left to the portable routine.
template <TexelZero ZERO, bool HAS_COVER>
AVX2_CODE void AddRows(const EdgeRows& rows, const SpanTexture& texture, CoverRow* cover) {
    Queue& spans = queue<ZERO>;
    const int32_t pitch = FramePitch, width = ScreenWidth;
    uint8_t* line = FrameBuffer + ptrdiff_t{rows.first} * pitch;
    int32_t columns = (ScreenHeight - 1 - rows.first) * pitch + width - SPAN_BLOCK;  // to the frame's last pixels
    CoverRow* rowCover = HAS_COVER ? cover + rows.first : nullptr;
    const EdgeRow* row = rows.table + rows.first;
    const EdgeRow* const rowsEnd = rows.table + rows.end;
    int32_t lane = spans.laneCount;
    Piece* piece = spans.pieces + spans.pieceCount;
    for (; row != rowsEnd; ++row, line += pitch, columns -= pitch, rowCover += HAS_COVER) {
        const int32_t begin = CeilFixed(row->left.x);
        const int32_t count = CeilFixed(row->right.x) - begin;
        if (count <= 0) continue;
        const int32_t space = std::min(width, columns) - begin - count;
        if ((begin | space | (PIXELS_MAX - count)) < 0) {
            FillPortably(rows.table, static_cast<int32_t>(row - rows.table), texture, ZERO, cover);
            continue;
        }
        PutLane(spans, lane, *row);
        Piece* const end = AddPieces<ZERO, HAS_COVER>(piece, spans.laneBlocks[0].value[0] + lane,
                                                      {line + begin, begin, count}, texture, rowCover);
        lane += end != piece;
        piece = end;
        if (lane < LANES) continue;
        AddWordsOfLanes<ZERO>(lane, piece, cover);
        lane = 0;
        piece = spans.pieces;
    }
    spans.laneCount = lane;
    spans.pieceCount = static_cast<int32_t>(piece - spans.pieces);
}

template <TexelZero ZERO>
void AddRows(const EdgeRows& rows, const SpanTexture& texture, CoverRow* cover) {
    cover != nullptr ? AddRows<ZERO, true>(rows, texture, cover) : AddRows<ZERO, false>(rows, texture, nullptr);
}

}  // namespace

void FillRowsAvx2(const EdgeRows& rows, const SpanTexture& texture, TexelZero texelZero, CoverRow* cover) {
    if (texelZero == TexelZero::Drawn) {
        AddRows<TexelZero::Drawn>(rows, texture, cover);
        if (cover == nullptr) FinishRowsAvx2();
    } else {
        AddRows<TexelZero::Skipped>(rows, texture, cover);
        DrawAll<TexelZero::Skipped>(cover);
    }
}

void FinishRowsAvx2() {
    DrawAll<TexelZero::Drawn>(nullptr);
}

#endif
