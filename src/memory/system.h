// Start-up and shut-down of what one game needs: the pool, the file layer, the timer; the shut-down also closes the
// accelerator and the display.
#pragma once

#include <cstdint>

extern int32_t PoolReady, FileLayerReady, TimerStarted;  // 0 or 1

bool SystemInit();  // true; FatalError(1, "Could not allocate memory pool.\n") without memory

// May be called at any point of start-up, and again: releases only what is up. Prints the pool's free bytes (0 when
// there is no pool).
void SystemShutdown();
