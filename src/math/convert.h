// Float to integer, defined for every input: NaN and out-of-range values give INT32_MIN, as x86 does.
#pragma once

#include <cstdint>
#include <limits>

#ifdef __x86_64__

// Not the intrinsics: for a value known while compiling, g++ works them out by another rule than the processor's.
inline int32_t TruncToInt(double value) {
    int32_t result;
    asm("cvttsd2si %1, %0" : "=r"(result) : "x"(value));
    return result;
}

// To the nearest, ties to even.
inline int32_t RoundToInt(double value) {
    int32_t result;
    asm("cvtsd2si %1, %0" : "=r"(result) : "x"(value));
    return result;
}

#else

inline int32_t TruncToInt(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

// To the nearest, ties to even: adding 1.5 x 2^52 leaves the rounded integer in the low bits of the sum.
inline int32_t RoundToInt(double value) {
    if (!(value >= -2147483648.5 && value < 2147483647.5)) return std::numeric_limits<int32_t>::min();
    const double rounded = (value + 6755399441055744.0) - 6755399441055744.0;
    return static_cast<int32_t>(rounded);
}

#endif
