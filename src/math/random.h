// The game's random numbers: the same sequence on every platform. Nothing outside the game draws from it.
#pragma once

#include <cstdint>

constexpr int32_t RANDOM_MAX = 32767;
constexpr uint32_t RAND_SEED = 1;

extern uint32_t RandState;  // RAND_SEED at program start, never reset; part of the trace digest

int32_t Rand();  // 0..RANDOM_MAX
