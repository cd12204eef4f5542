// Four numbers at once. Each lane gives the same bits as a plain float or integer.
#pragma once

#include "math/convert.h"

#include <cstdint>
#include <cstring>
#ifdef __x86_64__
#include <immintrin.h>
#endif

constexpr int LANE_COUNT = 4;
constexpr int ALL_BITS = (1 << LANE_COUNT) - 1;  // of Bits
typedef float Float4 __attribute__((vector_size(16)));
typedef int32_t Int4 __attribute__((vector_size(16)));  // of a comparison: all bits of a lane, or none

// Any 16 bytes, at any address.
template <typename Lanes>
Lanes LoadLanes(const void* bytes) {
    Lanes lanes;
    std::memcpy(&lanes, bytes, sizeof lanes);
    return lanes;
}
template <typename Lanes>
void StoreLanes(void* bytes, Lanes lanes) {
    std::memcpy(bytes, &lanes, sizeof lanes);
}

// The number of a list's entry for a lane: where the list is at its end, the other lanes have its first entry.
inline int OrFirst(int number, int count) {
    return number < count ? number : 0;
}

inline Float4 All(float number) {
    return Float4{number, number, number, number};
}

inline Float4 Absolute(Float4 values) {
    return reinterpret_cast<Float4>(reinterpret_cast<Int4>(values) & INT32_MAX);
}

// One bit a lane, set where all bits of the lane are.
inline int Bits(Int4 mask) {
#ifdef __x86_64__
    return _mm_movemask_ps(reinterpret_cast<__m128>(mask));
#else
    int bits = 0;
    for (int lane = 0; lane < LANE_COUNT; ++lane)
        bits |= (mask[lane] & 1) << lane;
    return bits;
#endif
}

// As TruncToInt and RoundToInt (math/convert.h).
inline Int4 TruncToInts(Float4 values) {
#ifdef __x86_64__
    return reinterpret_cast<Int4>(_mm_cvttps_epi32(values));
#else
    return Int4{TruncToInt(values[0]), TruncToInt(values[1]), TruncToInt(values[2]), TruncToInt(values[3])};
#endif
}
inline Int4 RoundToInts(Float4 values) {
#ifdef __x86_64__
    return reinterpret_cast<Int4>(_mm_cvtps_epi32(values));
#else
    return Int4{RoundToInt(values[0]), RoundToInt(values[1]), RoundToInt(values[2]), RoundToInt(values[3])};
#endif
}

inline Float4 ToFloats(Int4 values) {
    return __builtin_convertvector(values, Float4);
}

// a - b, without overflow and rounded once.
inline Float4 Difference(Int4 a, Int4 b) {
    typedef double Double4 __attribute__((vector_size(32)));
    return __builtin_convertvector(__builtin_convertvector(a, Double4) - __builtin_convertvector(b, Double4), Float4);
}

template <typename Lanes>
Lanes Least(Lanes a, Lanes b) {
    return a < b ? a : b;
}
template <typename Lanes>
Lanes Greatest(Lanes a, Lanes b) {
    return a > b ? a : b;
}

// Exchanges rows and columns.
template <typename Lanes>
void Transpose(Lanes& a, Lanes& b, Lanes& c, Lanes& d) {
    const Lanes lowAb = __builtin_shufflevector(a, b, 0, 4, 1, 5), highAb = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Lanes lowCd = __builtin_shufflevector(c, d, 0, 4, 1, 5), highCd = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(lowAb, lowCd, 0, 1, 4, 5);
    b = __builtin_shufflevector(lowAb, lowCd, 2, 3, 6, 7);
    c = __builtin_shufflevector(highAb, highCd, 0, 1, 4, 5);
    d = __builtin_shufflevector(highAb, highCd, 2, 3, 6, 7);
}
