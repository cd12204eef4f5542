// Everything below app/ replaced by fakes that write down who called them, so that order and arguments can be tested.
#pragma once

#include "host/win32.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

using Calls = std::vector<std::string>;  // a name, then the arguments that matter, with spaces between
using Keys = std::set<int>;

struct FakeMachine {
    Calls calls;
    Calls boxes;  // texts of message boxes

    // What the machine answers.
    bool displayOpens = true;  // of the front end
    bool graphicsOpen = true;  // of the game
    bool surfaceLocks = true;
    int cursorCount = 0;
    std::deque<UINT> messages;  // waiting in the queue
    std::deque<Keys> polls;     // keys held at the keyboard polls to come; then they stay as they are
    Keys held, hit;             // a poll computes `hit`
    DWORD clock = 0;
    uint32_t framesUntilHostEnds = 1000;
    DWORD exceptionInStep = 0;  // HostGuard reports this instead of running the step

    std::function<void(const std::string&)> onCall;  // runs at every recorded call

    Calls Among(const std::set<std::string>& names) const;  // the recorded calls of these functions, in order
    int Count(const std::string& call) const;
};

extern FakeMachine Fake;  // clean before each test, and so are the globals of app/

void OpenFakeDisplay();  // a DirectDraw display is open

struct ExitRequest {  // ExitProcess throws it
    DWORD code;
};
