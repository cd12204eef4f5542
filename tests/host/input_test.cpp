#include "host/dinput.h"
#include "input/devices.h"
#include "session/key_hits.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

class Input : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        const HWND window = OpenTestWindow();
        DirectInputCreateA(nullptr, DIRECTINPUT_VERSION, &input_, nullptr);
        input_->CreateDevice(GUID_SysKeyboard, &keyboard_, nullptr);
        keyboard_->SetDataFormat(&c_dfDIKeyboard);
        keyboard_->SetCooperativeLevel(window, DISCL_NONEXCLUSIVE | DISCL_FOREGROUND);
        input_->CreateDevice(GUID_SysMouse, &mouse_, nullptr);
        mouse_->SetDataFormat(&c_dfDIMouse);
        mouse_->SetCooperativeLevel(window, DISCL_EXCLUSIVE | DISCL_FOREGROUND);
        keyboard_->Acquire();
        mouse_->Acquire();
    }

    void TearDown() override {
        mouse_->Release();
        keyboard_->Release();
        input_->Release();
    }

    HRESULT PollKeys() { return keyboard_->GetDeviceState(KEY_COUNT, keys_); }
    HRESULT PollMouse() { return mouse_->GetDeviceState(sizeof state_, &state_); }

    IDirectInputA* input_ = nullptr;
    IDirectInputDeviceA* keyboard_ = nullptr;
    IDirectInputDeviceA* mouse_ = nullptr;
    uint8_t keys_[KEY_COUNT] = {};
    DIMOUSESTATE state_{};
};

TEST_F(Input, AKeyIsDownWhileAnySourceHoldsItOrForOnePollOfAPulse) {
    DeviceKey(KeySource::Keyboard, DIK_UP, true);
    DeviceKey(KeySource::Pad, DIK_UP, true);
    DeviceKey(KeySource::Pad, DIK_UP, false);
    PulseKey(DIK_SPACE);
    PulseKey(DIK_UP);
    for (const int pulsed : {0x80, 0}) {
        EXPECT_EQ(PollKeys(), DI_OK);
        EXPECT_EQ(keys_[DIK_UP], 0x80);
        EXPECT_EQ(keys_[DIK_DOWN], 0);
        EXPECT_EQ(keys_[DIK_SPACE], pulsed);
    }
    DeviceKey(KeySource::Keyboard, DIK_UP, false);
    PollKeys();
    EXPECT_EQ(keys_[DIK_UP], 0);
}

TEST_F(Input, AKeyTappedBetweenTwoPollsIsDownForOne) {
    for (const KeySource source : {KeySource::Keyboard, KeySource::Pad}) {
        DeviceKey(source, DIK_SPACE, true);
        DeviceKey(source, DIK_SPACE, false);
        for (const int tapped : {0x80, 0}) {
            PollKeys();
            EXPECT_EQ(keys_[DIK_SPACE], tapped);
        }
    }
    DeviceFocus(false);
    DeviceKey(KeySource::Pad, DIK_SPACE, true);
    DeviceKey(KeySource::Pad, DIK_SPACE, false);
    DeviceFocus(true);
    keyboard_->Acquire();
    EXPECT_EQ(PollKeys(), DI_OK);
    EXPECT_EQ(keys_[DIK_SPACE], 0) << "it was meant for another window";
}

TEST_F(Input, AScreenHearsAKeyThatIsLetGoAndPressedAgainBetweenTwoLooks) {
    TestMachine.onWait = [] {};
    KeyHits hits;
    DeviceKey(KeySource::Keyboard, DIK_DOWN, true);
    for (const bool again : {false, true, false}) {  // held at first
        if (again) DeviceKey(KeySource::Keyboard, DIK_DOWN, false);
        if (again) DeviceKey(KeySource::Keyboard, DIK_DOWN, true);
        hits.Wait();
        EXPECT_EQ(hits.Any(DIK_DOWN), again);
    }
}

TEST_F(Input, MouseCountsAreSummedAndTakenOnce) {
    DeviceMouseMotion(3, -5, 120);
    DeviceMouseMotion(4, -6, -240);
    DeviceMouseButton(KeySource::Keyboard, 1, true);
    DeviceMouseButton(KeySource::Pad, 9, true);
    EXPECT_EQ(PollMouse(), DI_OK);
    EXPECT_EQ(state_.lX, 7);
    EXPECT_EQ(state_.lY, -11);
    EXPECT_EQ(state_.lZ, -120);
    EXPECT_EQ(state_.rgbButtons[0], 0);
    EXPECT_EQ(state_.rgbButtons[1], 0x80);
    for (int i = 0; i < 3; ++i)
        DeviceMouseMotion(INT32_MAX, INT32_MIN, 0);
    PollMouse();
    EXPECT_EQ(state_.lX, INT32_MAX);
    EXPECT_EQ(state_.lY, INT32_MIN);
}

TEST_F(Input, LosingTheFocusLosesTheDevicesAndLetsGoOfEverything) {
    EXPECT_TRUE(TestMachine.mouseCaptured);
    DeviceKey(KeySource::Keyboard, DIK_UP, true);
    DeviceMouseButton(KeySource::Keyboard, 0, true);
    DeviceMouseMotion(9, 9, 0);
    std::memset(keys_, 0x55, sizeof keys_);
    DeviceFocus(false);
    EXPECT_FALSE(TestMachine.mouseCaptured);
    EXPECT_EQ(keyboard_->Acquire(), DIERR_OTHERAPPHASPRIO);
    EXPECT_EQ(PollKeys(), DIERR_INPUTLOST);
    EXPECT_EQ(PollKeys(), DIERR_NOTACQUIRED);
    EXPECT_EQ(keys_[DIK_UP], 0x55) << "a failed read leaves the buffer alone";

    DeviceFocus(true);
    EXPECT_EQ(PollKeys(), DIERR_NOTACQUIRED);
    EXPECT_EQ(keyboard_->Acquire(), DI_OK);
    EXPECT_EQ(keyboard_->Acquire(), DI_ALREADY_ACQUIRED);
    EXPECT_EQ(mouse_->Acquire(), DI_OK);
    EXPECT_TRUE(TestMachine.mouseCaptured);
    EXPECT_EQ(PollKeys(), DI_OK);
    EXPECT_EQ(PollMouse(), DI_OK);
    EXPECT_EQ(keys_[DIK_UP], 0);
    EXPECT_EQ(state_.lX, 0);
    EXPECT_EQ(state_.rgbButtons[0], 0);

    DeviceFocus(false);
    DeviceFocus(true);
    EXPECT_EQ(PollKeys(), DIERR_INPUTLOST) << "though it is back before the poll";

    EXPECT_EQ(keyboard_->Acquire(), DI_OK);
    PlayUnfocused(true);
    DeviceKey(KeySource::Keyboard, DIK_UP, true);
    DeviceFocus(false);
    EXPECT_EQ(PollKeys(), DI_OK) << "the game plays on";
    EXPECT_EQ(keys_[DIK_UP], 0);
}

}  // namespace
