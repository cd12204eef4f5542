// WebAssembly ends a page's program at a fault, and nothing can resume it: the page says so.
#include "host/win32.h"
#include "input/session_hooks.h"

#include <cstdio>
#include <cstdlib>

DWORD HostGuard(void (*step)()) {
    step();
    return 0;
}

void ExitProcess(DWORD exitCode) {
    Session.finish();
    std::fflush(nullptr);
    std::exit(static_cast<int>(exitCode & 0xFF));
}
