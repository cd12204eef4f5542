// A machine: the record of functions behind the calls in include/host. Tried in the order of Machines (machine.cpp),
// the headless one last. A function pointer may be null where a comment says so.
#pragma once

#include "core/options.h"

#include <cstdint>

// A picture as it is shown: 32-bit pixels 0x00RRGGBB, rows top to bottom without gaps.
struct Picture {
    const uint32_t* pixels;
    int width, height;
};

struct Machine {
    const char* name;
    bool (*start)(const Options& options);  // false: not available here, the next one is tried
    void (*stop)();

    uint32_t (*milliseconds)();             // the clock behind GetTickCount; may sleep briefly when polled in a loop
    void (*beforeKeyboardPoll)();           // pump devices into core/input; called by the keyboard's GetDeviceState
    void (*pump)();                         // devices into core/input and core/messages; called by PeekMessageA
    void (*wait)();                         // sleep until a device has something to say; called by WaitMessage

    bool (*createWindow)(const char* title);
    void (*desktopSize)(int* width, int* height);
    void (*present)(const Picture& picture);          // show it now
    void (*setMouseCaptured)(bool captured);          // relative mouse mode, pointer hidden
    int (*messageBox)(const char* text, const char* caption);
    bool (*hasWindow)();                              // a message box can be seen
};

extern const Machine* CurrentMachine;  // never null after HostMain has started
