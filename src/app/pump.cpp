#include "app/pump.h"

#include "app/app_tables.h"
#include "app/error_box.h"
#include "platform/display.h"

namespace {

void RunGuarded(void (*step)()) {
    const DWORD exception = HostGuard(step);
    if (exception == 0) return;
    ErrorBox("Exception", MB_OK);
    if (Display.directDraw != nullptr) Display.directDraw->FlipToGDISurface();
    ExitProcess(exception);
}

}  // namespace

void RunMessagePump(uint8_t mode, void (*step)()) {
    MSG message{};
    while (message.message != WM_QUIT && GameMode == mode) {
        if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            if (message.message == WM_QUIT) continue;
            TranslateMessage(&message);
            DispatchMessageA(&message);
        } else if (AppActive != 0) {
            RunGuarded(step);
        } else {
            while (WaitMessage() == FALSE) {
            }
        }
    }
}
