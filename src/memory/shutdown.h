// The shut-down of what one game needs: it closes the accelerator and the display, and releases the pool. Below the
// fatal exit, which ends every failed game with it.
#pragma once

#include <cstdint>

extern int32_t PoolReady, FileLayerReady, TimerStarted;  // 0 or 1; SystemInit sets them
extern uint8_t* PoolMemory;                              // the block that the pool lies in; set by SystemInit

void ClearSubsystemFlags();  // those above and the accelerator's = 0

// May be called at any point of start-up, and again: releases only what is up. Prints the pool's free bytes (0 when
// there is no pool).
void SystemShutdown();
