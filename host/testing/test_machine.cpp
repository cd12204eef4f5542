#include "testing/test_machine.h"

#include "host/win32.h"
#include "input/devices.h"
#include "interfaces/cd_drive.h"
#include "interfaces/display.h"
#include "interfaces/files.h"
#include "interfaces/presentation.h"
#include "interfaces/windows.h"
#include "machine/clock.h"
#include "machine/machine.h"
#include "machine/track_reader.h"
#include "session/run.h"

#include <cstdio>
#include <cstdlib>

TestMachineState TestMachine;

namespace {

uint32_t milliseconds = 0;

void Call(const std::function<void()>& hook) {
    if (hook) hook();
}

void Wait() {
    if (!TestMachine.onWait) {
        std::fprintf(stderr, "WaitMessage: no message can come; set TestMachine.onWait\n");
        std::abort();
    }
    TestMachine.onWait();
}

int ShowBox(const char* text, const char*) {
    TestMachine.messageBoxes.emplace_back(text);
    return IDOK;
}

void DesktopSize(int* width, int* height) {
    *width = 1024;
    *height = 768;
}

const Machine TEST_MACHINE = {
    .name = "test",
    .start = [](const Options&) { return true; },
    .stop = [] {},
    .milliseconds = [] { return milliseconds += TestMachine.clockStep; },
    .sleep = nullptr,
    .beforeKeyboardPoll = [] { Call(TestMachine.onPoll); },
    .pump = [] { Call(TestMachine.onPump); },
    .wait = Wait,
    .createWindow = [](const char*) { return TestMachine.windowOpens; },
    .desktopSize = DesktopSize,
    .present = nullptr,
    .presentTexture = nullptr,
    .showOverlay = [](const Picture* overlay) { TestMachine.overlayShown = overlay != nullptr; },
    .applySettings = nullptr,
    .keyLabel = nullptr,
    .setMouseCaptured = [](bool captured) { TestMachine.mouseCaptured = captured; },
    .bringFile = nullptr,
    .keepFile = nullptr,
    .messageBox = ShowBox,
    .hasWindow = [] { return true; },
    .refreshRate = nullptr,
    .windowSize = nullptr,
    .displays = nullptr,
    .openSound = [](std::string&) { return TestMachine.soundOpens; },
    .playSound = [](std::shared_ptr<TrackReader> track) { TestMachine.sounds.push_back(std::move(track)); },
    .closeSound = [] {},
};

}  // namespace

void UseTestMachine() {
    TestMachine = {};
    CurrentMachine = &TEST_MACHINE;
    ResetCdDrive();
    ResetRun();
    ResetWindows();
    ResetDevices();
    ResetDisplay();
    ResetPresentation();
    SetDataFolder(".");
}

void SetTestClock(uint32_t now) {
    SetClock(now);
}

void SetTestDataFolder(const std::string& folder) {
    SetDataFolder(folder);
}
