// 16-ms ticks, the frame limiter and the frame counter. 1 tick = 16 ms of GetTickCount(). Nothing here can fail.
#pragma once

#include <cstdint>

constexpr uint32_t TICK_SHIFT = 4;        // milliseconds >> TICK_SHIFT = ticks
constexpr uint32_t FRAME_TICKS_MAX = 12;  // longer frames are reported as this

extern uint16_t MinFrameTicks;  // 1, 2 or 4; LoadLevel copies it from the level record
extern uint32_t MeasuredTicks;  // length of the frame under way so far; StartGame sets it to 0
extern uint32_t FrameTicks;     // length of the last frame, 1..12; 0 before the first FrameStep
extern uint16_t FrameCount;     // 1 after a level load, wraps 65535 -> 0; GameFrame adds 1

void TimerReset();  // the next frame is measured from now

// Busy wait until MinFrameTicks have passed since the end of the previous wait; the time the frame itself took counts.
// A remainder of less than a tick is lost. A MinFrameTicks of 0 never reads the clock.
void FrameLimiter();

void FrameStep();  // FrameTicks = measured ticks, at least 1; measured ticks = 0
