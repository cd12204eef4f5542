// A window of the test machine, for tests of what needs one. A program that uses it links `host`.
#pragma once

#include "host/win32.h"

inline HWND OpenTestWindow(WNDPROC procedure = DefWindowProcA) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = procedure;
    windowClass.lpszClassName = "test";
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, "test", "test", WS_POPUP, 0, 0, 640, 480, nullptr, nullptr, nullptr, nullptr);
}
