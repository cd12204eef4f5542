#include "platform/input.h"

#include "input/devices.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <cstring>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace {

class InputTest : public ::testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        std::memset(KeyState, 0, sizeof(KeyState));
        ASSERT_TRUE(StartInput(nullptr, OpenTestWindow(), Input));
    }
    void TearDown() override { StopInput(Input); }

    static void Press(uint8_t code, bool down = true) { DeviceKey(KeySource::Keyboard, code, down); }

    static void Poll() {
        PollKeyboard(Input);
        PollMouse(Input);
        SummariseMouse();
        BuildControls();
    }
};

}  // namespace

TEST_F(InputTest, KeyIsHitOnlyInThePollThatSeesItGoDown) {
    for (const auto& [down, hit] : {std::pair{true, true}, {true, false}, {false, false}, {true, true}}) {
        Press(DIK_APPS, down);
        Poll();
        EXPECT_EQ(KeyDown(DIK_APPS), down);
        EXPECT_EQ(KeyHit(DIK_APPS), hit);
    }
}

TEST_F(InputTest, ControlsOfEachKey) {
    const std::pair<std::vector<uint8_t>, uint16_t> rows[] = {
        {{}, 0},          {{0xC8}, 0x0001}, {{0xD0}, 0x0002},       {{0xCB}, 0x0004},
        {{0xCD}, 0x0008}, {{0x39}, 0x0010}, {{0x2A}, 0x0020},       {{0x36}, 0x0020},
        {{0x38}, 0x0120}, {{0xB8}, 0x0020}, {{0x2A, 0x38}, 0x0120}, {{0x9D}, 0x0040},
        {{0x1D}, 0x0080}, {{0x01}, 0x0200}, {{0x9C}, 0x0400},       {{0xC8, 0xCB, 0x9D}, 0x0045},
        {{0x1C}, 0x0000},  // the main Enter key is no control
    };
    for (const auto& [keys, controls] : rows) {
        for (const uint8_t key : keys)
            Press(key);
        Poll();
        EXPECT_EQ(Controls, controls);
        for (const uint8_t key : keys)
            Press(key, false);
    }
}
