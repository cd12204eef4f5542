#include "machine/clock.h"

#include "machine/machine.h"

namespace {

uint32_t now = 0;
uint32_t offset = 0;  // our clock minus the machine's, modulo 2^32

}  // namespace

uint32_t ReadClock() {
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

void ShowRecordedClock(uint32_t milliseconds) {
    now = milliseconds;
}

void ResetClock() {
    ReadClock();
    SetClock(0);
}
