// The host for unit tests of any module: a machine without a window and without a command line. Input is given with
// the calls of input/devices.h; pictures are read with interfaces/presentation.h, display modes changed and surfaces
// lost with interfaces/display.h.
#pragma once

#include "machine/track_reader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Installs the machine and resets everything: the clock at 0, no window, no message, nothing down, the focus held, the
// desktop's mode, no picture, no disc, data folder ".".
void UseTestMachine();

// What the test machine does, and what was done to it. UseTestMachine resets it.
struct TestMachineState {
    uint32_t clockStep = 1;        // milliseconds that each GetTickCount and each keyboard poll adds
    bool windowOpens = true;       // CreateWindowExA succeeds
    std::function<void()> onWait;  // each turn of WaitMessage; unset: a wait that nothing can end aborts the test
    std::function<void()> onPump;  // each PeekMessageA
    std::function<void()> onPoll;  // each keyboard poll, before the keys are read
    std::vector<std::string> messageBoxes;  // texts shown
    bool mouseCaptured = false;
    bool overlayShown = false;
    bool soundOpens = true;                            // the CD drive finds a sound device
    std::vector<std::shared_ptr<TrackReader>> sounds;  // the tracks that were begun; null: silence
};
extern TestMachineState TestMachine;

void SetTestClock(uint32_t milliseconds);  // the next reading gives this much plus clockStep
void SetTestDataFolder(const std::string& folder);
