#include "host/win32.h"
#include "input/session_hooks.h"
#include "machine/clock.h"

namespace {

// Programs wait by reading the clock until it is late enough. A clock that naps within the same millisecond is read
// again here, so that a recording need not hold as many readings that say nothing.
constexpr int READINGS_MAX = 8;

void ReadChangedClock() {
    const uint32_t before = ClockNow();
    for (int readings = 0; readings < READINGS_MAX && ReadClock() == before; ++readings) {
    }
}

}  // namespace

DWORD GetTickCount() {
    if (Session.replaying()) {
        ShowRecordedClock(Session.replayClock());
    } else {
        ReadChangedClock();
        Session.tookClock(ClockNow());
    }
    Session.afterClock();
    return ClockNow();
}
