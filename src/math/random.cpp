#include "math/random.h"

uint32_t RandState = RAND_SEED;

int32_t Rand() {
    RandState = RandState * 1103515245u + 12345u;
    return static_cast<int32_t>((RandState >> 16) & RANDOM_MAX);
}
