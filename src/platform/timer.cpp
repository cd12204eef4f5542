#include "platform/timer.h"

#include "host/win32.h"

uint16_t MinFrameTicks;
uint32_t MeasuredTicks;
uint32_t FrameTicks;
uint16_t FrameCount = 1;

namespace {

// Milliseconds of GetTickCount().
uint32_t ReferenceTick;  // GetTickCount at the end of the previous wait
uint32_t CurrentTick;    // the latest reading

}  // namespace

void TimerReset() {
    ReferenceTick = GetTickCount();
}

void FrameLimiter() {
    while (MinFrameTicks > MeasuredTicks) {
        CurrentTick = GetTickCount();
        MeasuredTicks = (CurrentTick - ReferenceTick) >> TICK_SHIFT;
    }
    ReferenceTick = CurrentTick;
    if (MeasuredTicks > FRAME_TICKS_MAX) MeasuredTicks = FRAME_TICKS_MAX;
}

void FrameStep() {
    FrameTicks = MeasuredTicks != 0 ? MeasuredTicks : 1;
    MeasuredTicks = 0;
}
