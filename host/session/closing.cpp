#include "session/closing.h"

#include "input/devices.h"
#include "machine/process.h"
#include "session/ending.h"
#include "session/progress.h"

namespace {

// More polls than the game ever makes between two messages, except on its choice screens.
constexpr uint32_t POLLS_WITHOUT_PUMP = 8;

bool requested = false;
bool pressed = false;

}  // namespace

void RequestClose() {
    requested = true;
}

bool CloseRequested() {
    return requested || EndingSignal() != 0;
}

void CloseAtPoll() {
    if (!CloseRequested()) return;
    if (Progress.pollsSincePeek > POLLS_WITHOUT_PUMP) EndRun(0);
    pressed = !pressed;
    if (pressed) PulseKey(DIK_LWIN);
}

void CloseAtWait() {
    if (CloseRequested()) EndRun(0);
}

void ResetClosing() {
    requested = pressed = false;
}
