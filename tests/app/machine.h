// Everything below app/ replaced by fakes that write down who called them, so that order and arguments can be tested.
#pragma once

#include "host/win32.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

struct FakeMachine {
    std::vector<std::string> calls;
    std::vector<std::string> boxes;  // texts of message boxes

    // What the machine answers.
    bool classRegisters = true;
    bool windowOpens = true;
    bool inputStarts = true;
    bool displayOpens = true;  // of the front end
    bool graphicsOpen = true;  // of the game
    bool surfaceLocks = true;
    int cursorCount = 0;
    std::deque<UINT> messages;        // waiting in the queue
    std::deque<std::set<int>> polls;  // keys held at the keyboard polls to come; then they stay as they are
    std::set<int> held, hit;          // keys; a poll computes `hit`
    DWORD clock = 0;
    uint32_t framesUntilHostEnds = 1000;  // HostEndOfFrame calls
    DWORD exceptionInStep = 0;            // HostGuard reports this instead of running the step

    std::function<void(const std::string&)> onCall;  // runs at every recorded call

    // The recorded calls among `names`, in order.
    std::vector<std::string> Among(const std::set<std::string>& names) const;
    int Count(const std::string& name) const;
};

extern FakeMachine Fake;

void OpenFakeDisplay();  // a DirectDraw display is open

// A clean machine and clean globals of app/ before each test.
void ResetFakeMachine();

struct ExitRequest {  // ExitProcess throws it
    DWORD code;
};
