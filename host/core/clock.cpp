#include "core/clock.h"

#include "core/machine.h"
#include "core/recorder.h"
#include "core/replay.h"
#include "host/win32.h"

namespace {

uint32_t now = 0;
uint32_t offset = 0;  // of our clock against the machine's

// Programs wait by reading the clock until it is late enough. A clock that naps within the same millisecond is read
// again here, so that a recording need not hold as many readings that say nothing.
constexpr int MOST_READINGS = 8;

uint32_t ReadChangedClock() {
    const uint32_t before = now;
    for (int readings = 0; readings < MOST_READINGS && ReadClock() == before; ++readings) {
    }
    return now;
}

}  // namespace

uint32_t ReadClock() {
    if (Replaying()) return now;
    now = CurrentMachine->milliseconds() + offset;
    return now;
}

uint32_t ClockNow() {
    return now;
}

void SetClock(uint32_t milliseconds) {
    offset += milliseconds - now;
    now = milliseconds;
}

void ResetClock() {
    ReadClock();
    SetClock(0);
}

DWORD GetTickCount() {
    if (Replaying()) return now = ReplayClock();
    RecordClock(ReadChangedClock());
    return now;
}
