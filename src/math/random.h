// The game's random numbers: the same sequence on every platform, seeded at program start.
#pragma once

#include <cstdint>

constexpr int32_t RAND_LIMIT = 32767;
extern uint32_t RandState;  // part of the trace digest

int32_t Rand();  // 0..RAND_LIMIT
