// Keys, mouse and controllers of the machine with a window, as the game polls them. No window is opened.
#include "backends/sdl/keys.h"
#include "backends/sdl/sdl_machine.h"
#include "input/devices.h"
#include "input/keys.h"
#include "machine/options.h"
#include "session/closing.h"
#include "session/run.h"

#include <gtest/gtest.h>

#include <SDL.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <string>

namespace {

class SdlDevices : public testing::Test {
protected:
    void SetUp() override {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        setenv("SDL_JOYSTICK_ALLOW_BACKGROUND_EVENTS", "1", 1);
        ResetDevices();
        CurrentMachine = &SdlMachine;
        ASSERT_TRUE(SdlMachine.start({}));
        ResetRun();
    }

    void TearDown() override {
        SdlMachine.stop();
        ResetDevices();
    }

    bool Down(uint8_t scanCode) {
        SdlMachine.beforeKeyboardPoll();
        std::array<uint8_t, KEY_COUNT> keys{};
        TakeKeys(keys.data());
        return keys[scanCode] != 0;
    }
};

class SdlPad : public SdlDevices {
protected:
    void SetUp() override {
        SdlDevices::SetUp();
        device = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, SDL_CONTROLLER_AXIS_MAX,
                                           SDL_CONTROLLER_BUTTON_MAX, 0);
        if (device < 0) GTEST_SKIP() << "this SDL makes no controllers: " << SDL_GetError();
        SdlMachine.pump();
        pad = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(device));
        ASSERT_TRUE(pad);
        Axis(SDL_CONTROLLER_AXIS_TRIGGERRIGHT, -32768);  // a virtual trigger rests in the middle
        SdlMachine.pump();
    }

    void Axis(int axis, int value) { SDL_JoystickSetVirtualAxis(pad, axis, static_cast<Sint16>(value)); }
    void Button(int button, bool down) { SDL_JoystickSetVirtualButton(pad, button, down ? 1 : 0); }

    int device = -1;
    SDL_Joystick* pad = nullptr;
};

void PushKey(SDL_Scancode key, bool down, bool repeat = false) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.repeat = repeat ? 1 : 0;
    event.key.keysym.scancode = key;
    SDL_PushEvent(&event);
}

void QueueAt(uint32_t milliseconds, SDL_Event event) {
    event.common.timestamp = milliseconds;
    SDL_PeepEvents(&event, 1, SDL_ADDEVENT, 0, 0);
}

SDL_Event AltKey(bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = SDL_SCANCODE_LALT;
    return event;
}

constexpr uint8_t UP = 0xC8, RIGHT = 0xCD;

}  // namespace

// The lists of keys for scripts and for windows name the same key positions.
TEST(SdlKeys, AgreeWithTheNamesOfScripts) {
    int compared = 0;
    for (int key = 0; key < SDL_NUM_SCANCODES; ++key) {
        std::string name = SDL_GetScancodeName(static_cast<SDL_Scancode>(key));
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::toupper(c); });
        if (name.rfind("KEYPAD ", 0) == 0 && std::isdigit(static_cast<unsigned char>(name.back())))
            name = "NUMPAD" + name.substr(7);
        const uint8_t scanCode = ScanCodeOf(static_cast<SDL_Scancode>(key));
        uint8_t expected = 0;
        if (scanCode == 0 || !FindKey(name, expected)) continue;
        EXPECT_EQ(scanCode, expected) << name;
        compared++;
    }
    EXPECT_GE(compared, 75);
}

TEST_F(SdlDevices, KeysGoDownAndUpAndDoNotRepeat) {
    PushKey(SDL_SCANCODE_UP, true);
    PushKey(SDL_SCANCODE_KP_ENTER, true);
    EXPECT_TRUE(Down(UP));
    PushKey(SDL_SCANCODE_UP, false);
    EXPECT_FALSE(Down(UP));
    EXPECT_TRUE(Down(0x9C));
    PushKey(SDL_SCANCODE_UP, true, true);  // a repeat of a key that was already held in another window
    EXPECT_FALSE(Down(UP));
}

TEST_F(SdlDevices, KeyThatTwoKeysStandForStaysDownUntilBothAreUp) {
    constexpr uint8_t MUTE = 0xA0;
    PushKey(SDL_SCANCODE_MUTE, true);
    PushKey(SDL_SCANCODE_AUDIOMUTE, true);
    PushKey(SDL_SCANCODE_MUTE, false);
    EXPECT_TRUE(Down(MUTE));
    PushKey(SDL_SCANCODE_AUDIOMUTE, false);
    EXPECT_FALSE(Down(MUTE));
}

TEST_F(SdlDevices, CloseRequestComesThroughUnlessAltMadeIt) {
    SDL_Event close{};
    close.type = SDL_QUIT;
    ResetClosing();
    QueueAt(1000, AltKey(true));
    QueueAt(2000, close);
    QueueAt(2100, AltKey(false));
    QueueAt(2200, close);
    SdlMachine.pump();
    EXPECT_FALSE(CloseRequested());
    QueueAt(2500, close);
    SdlMachine.pump();
    EXPECT_TRUE(CloseRequested());
    ResetClosing();
}

TEST_F(SdlDevices, DriverThatShowsNothingNeverLosesTheFocus) {
    SDL_Event loss{};
    loss.type = SDL_WINDOWEVENT;
    loss.window.event = SDL_WINDOWEVENT_FOCUS_LOST;
    SDL_PushEvent(&loss);
    SdlMachine.pump();
    EXPECT_TRUE(HasFocus());
}

TEST_F(SdlPad, ReleasingOneSourceKeepsTheKeyOfAnother) {
    Button(SDL_CONTROLLER_BUTTON_DPAD_UP, true);
    Axis(SDL_CONTROLLER_AXIS_LEFTY, -30000);
    PushKey(SDL_SCANCODE_UP, true);
    EXPECT_TRUE(Down(UP));
    PushKey(SDL_SCANCODE_UP, false);
    EXPECT_TRUE(Down(UP));
    Button(SDL_CONTROLLER_BUTTON_DPAD_UP, false);
    EXPECT_TRUE(Down(UP));
    Axis(SDL_CONTROLLER_AXIS_LEFTY, 0);
    EXPECT_FALSE(Down(UP));
}

TEST_F(SdlPad, StickLetsGoLaterThanItPresses) {
    for (const auto& [value, down] : {std::pair{9000, false}, {11000, true}, {9000, true}, {7000, false}}) {
        Axis(SDL_CONTROLLER_AXIS_LEFTX, value);
        EXPECT_EQ(Down(RIGHT), down) << value;
    }
}

TEST_F(SdlPad, LeftStickTurnsInALevelByHowFarItIsPushedAndOnlyThere) {
    const struct {
        int x, y, turns;  // polls of 60 at which the key is down
    } rows[] = {{7900, -32000, 0}, {9000, -31000, 4}, {15500, -28000, 30}, {19250, 0, 45}, {23000, -23000, 60}};
    for (const auto& row : rows) {
        Axis(SDL_CONTROLLER_AXIS_LEFTX, row.x);
        Axis(SDL_CONTROLLER_AXIS_LEFTY, row.y);
        SetMouseUse(MouseUse::WithButton);
        int turns = 0, firstHalf = 0;
        for (int poll = 0; poll < 60; ++poll) {
            turns += Down(RIGHT) ? 1 : 0;
            if (poll < 30) firstHalf = turns;
        }
        EXPECT_EQ(turns, row.turns) << row.x;
        EXPECT_NEAR(firstHalf, turns / 2, 1) << "evenly spread";
        EXPECT_EQ(Down(UP), row.y != 0) << row.x;
        SetMouseUse(MouseUse::None);
        EXPECT_EQ(Down(RIGHT), row.x > 10000 && 2 * row.x > -row.y) << row.x;
    }
    Axis(SDL_CONTROLLER_AXIS_LEFTX, 0);
    SetMouseUse(MouseUse::WithButton);
    Down(RIGHT);
    EXPECT_FALSE(Down(RIGHT));
    Button(SDL_CONTROLLER_BUTTON_DPAD_RIGHT, true);
    for (int poll = 0; poll < 3; ++poll)
        EXPECT_TRUE(Down(RIGHT));
}

TEST_F(SdlPad, RightStickTurnsAsTheMouseWithItsLeftButton) {
    DIMOUSESTATE mouse{};
    Axis(SDL_CONTROLLER_AXIS_RIGHTX, 32767);
    SdlMachine.pump();
    TakeMouse(mouse);
    SDL_Delay(60);
    SdlMachine.pump();
    TakeMouse(mouse);
    EXPECT_GE(mouse.lX, 5);
    EXPECT_LE(mouse.lX, 18);  // a pause never turns further than a tenth of a second does
    EXPECT_EQ(mouse.lY, 0);
    EXPECT_EQ(mouse.rgbButtons[0], 0x80);
    Axis(SDL_CONTROLLER_AXIS_RIGHTX, 0);
    SdlMachine.pump();
    TakeMouse(mouse);
    EXPECT_EQ(mouse.rgbButtons[0], 0);
}

TEST_F(SdlPad, WhatIsHeldThroughALossOfFocusActsAgainAfterIt) {
    Axis(SDL_CONTROLLER_AXIS_LEFTX, 32767);
    Axis(SDL_CONTROLLER_AXIS_RIGHTX, 32767);
    SdlMachine.pump();
    DeviceFocus(false);
    SDL_Delay(60);
    SdlMachine.pump();
    DeviceFocus(true);
    DIMOUSESTATE mouse{};
    TakeMouse(mouse);
    EXPECT_EQ(mouse.lX, 0);
    EXPECT_EQ(mouse.rgbButtons[0], 0x80);
    EXPECT_TRUE(Down(RIGHT));
}
