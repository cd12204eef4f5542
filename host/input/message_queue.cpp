#include "input/message_queue.h"

#include "input/session_hooks.h"

#include <cstdint>
#include <deque>

namespace {

HWND window = nullptr;
std::deque<MSG> queue;
bool quitPosted = false;
int quitCode = 0;
uint32_t arrivals = 0;        // messages that have ever come
uint32_t arrivalsAtLook = 0;  // value of `arrivals` at the latest look

}  // namespace

void OpenQueue(HWND opened) {
    window = opened;
}

void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!window || Session.replaying()) return;
    queue.push_back({window, message, wParam, lParam});
    ++arrivals;
}

void PostQuit(int exitCode) {
    quitPosted = true;
    quitCode = exitCode;
    ++arrivals;
}

bool TakeMessage(MSG& message, bool removes) {
    if (!queue.empty()) {
        message = queue.front();
        if (removes) queue.pop_front();
        return true;
    }
    if (!quitPosted) return false;
    message = {nullptr, WM_QUIT, static_cast<WPARAM>(quitCode), 0};
    if (removes) quitPosted = false;
    return true;
}

void NoteLook() {
    arrivalsAtLook = arrivals;
}

bool NewSinceLook() {
    return arrivals != arrivalsAtLook;
}

void ResetQueue() {
    window = nullptr;
    queue.clear();
    quitPosted = false;
    arrivals = arrivalsAtLook = 0;
}
