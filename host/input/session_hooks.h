// The one way up: what devices and the old interfaces tell the session and ask of it (scripts, recordings, the end of
// the run). The session fills the record in (session/run.cpp); until then each hook does nothing, and the game's calls
// are answered by the machine alone.
#pragma once

#include "host/dinput.h"
#include "host/win32.h"

#include <cstdint>
#include <string>

struct SessionHooks {
    // The game's calls, before they are answered.
    void (*atKeyboardPoll)() = [] {};                         // a GetDeviceState of the keyboard begins
    void (*atKeyboardRead)(uint8_t* keys) = [](uint8_t*) {};  // it is about to get these keys, and may get others
    void (*atPeek)() = [] {};                                 // PeekMessageA
    void (*atWait)() = [] {};                                 // each turn of WaitMessage, which looks at no key

    void (*afterClock)() = [] {};  // GetTickCount, with its answer in ClockNow

    // A recording is being replayed: it answers, and what devices do goes nowhere.
    bool (*replaying)() = [] { return false; };
    uint32_t (*replayClock)() = [] { return uint32_t{0}; };
    HRESULT (*replayKeys)(uint8_t* keys) = [](uint8_t*) { return DIERR_NOTACQUIRED; };
    HRESULT (*replayMouse)(DIMOUSESTATE& state) = [](DIMOUSESTATE&) { return DIERR_NOTACQUIRED; };
    bool (*replayMessage)(MSG& message) = [](MSG&) { return false; };  // false: there was none

    // What the game was answered; not called in a replay.
    void (*tookClock)(uint32_t milliseconds) = [](uint32_t) {};
    void (*tookKeys)(HRESULT result, const uint8_t* keys) = [](HRESULT, const uint8_t*) {};
    void (*tookMouse)(HRESULT result, const DIMOUSESTATE& state) = [](HRESULT, const DIMOUSESTATE&) {};
    void (*tookMessage)(const MSG* message) = [](const MSG*) {};  // null: there was none
    // A file is to be read, or is missing. `digest`: the low half of one over its path and content. Called in a replay,
    // too.
    void (*openedFile)(const char* path, uint32_t digest) = [](const char*, uint32_t) {};

    bool (*wantsPicture)() = [] { return true; };  // as HostWantsPicture
    void (*requestClose)() = [] {};                // the window's close button
    // The game fails: the session keeps what it has of the run, and returns a sentence that says where; empty: nowhere.
    std::string (*keepFailure)() = [] { return std::string(); };
    void (*finish)() = [] {};  // the process ends: completes the files that the run writes
};
extern SessionHooks Session;
