// The host's clock: milliseconds since the run began. GetTickCount, scripts and the end of a run go by it.
#pragma once

#include <cstdint>

uint32_t ReadClock();                  // asks the machine; a deterministic clock moves on by 1
uint32_t ClockNow();                   // the latest reading, or what was set since
void SetClock(uint32_t milliseconds);  // the clock goes on from here; a jump ahead looks to the game like a long frame
void ShowRecordedClock(uint32_t milliseconds);  // what ClockNow gives until the next ReadClock
void ResetClock();                              // now is 0
