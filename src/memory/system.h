// Start-up and shut-down of everything one game needs.
#pragma once

#include <cstdint>

extern int32_t PoolReady, FileLayerReady, TimerStarted;  // 0 or 1

bool SystemInit();      // true; FatalError(1, "Could not allocate memory pool.\n") without memory
void SystemShutdown();  // may be called at any point of start-up
