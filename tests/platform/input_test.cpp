#include "platform/input.h"

#include "fake_machine.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

class InputTest : public ::testing::Test {
protected:
    void SetUp() override {
        Fake = {};
        std::memset(KeyState, 0, sizeof(KeyState));
        ASSERT_TRUE(StartInput(nullptr, nullptr, Input));
    }
    void TearDown() override { StopInput(Input); }

    static void Poll() {
        PollKeyboard(Input);
        PollMouse(Input);
        SummariseMouse();
        BuildControls();
    }
};

}  // namespace

TEST_F(InputTest, KeyIsHitOnlyInThePollThatSeesItGoDown) {
    for (const uint8_t code : {uint8_t{DIK_F1}, uint8_t{DIK_RWIN}, uint8_t{0xFF}}) {
        struct Row {
            bool pressed, hit;
        };
        for (const Row& row :
             {Row{true, true}, Row{true, false}, Row{false, false}, Row{true, true}, Row{false, false}}) {
            Fake.keys[code] = row.pressed ? 0x80 : 0;
            Poll();
            EXPECT_EQ(KeyDown(code), row.pressed);
            EXPECT_EQ(KeyHit(code), row.hit);
        }
    }
}

TEST_F(InputTest, FailedPollKeepsTheKeysAndHitsNothing) {
    Fake.keys[DIK_SPACE] = 0x80;
    Poll();
    Fake.keys[DIK_SPACE] = 0;
    Fake.keys[DIK_UP] = 0x80;
    Fake.failingCall = static_cast<int>(Fake.calls.size()) + 1;  // the keyboard's GetDeviceState
    Poll();
    EXPECT_TRUE(KeyDown(DIK_SPACE));
    EXPECT_FALSE(KeyHit(DIK_SPACE));
    EXPECT_FALSE(KeyDown(DIK_UP));
}

TEST_F(InputTest, ControlsOfEachKey) {
    struct Row {
        std::vector<uint8_t> keys;
        uint16_t controls;
    };
    const Row rows[] = {
        {{}, 0},
        {{0xC8}, 0x0001},
        {{0xD0}, 0x0002},
        {{0xCB}, 0x0004},
        {{0xCD}, 0x0008},
        {{0x39}, 0x0010},
        {{0x2A}, 0x0020},
        {{0x36}, 0x0020},
        {{0x38}, 0x0120},
        {{0xB8}, 0x0020},
        {{0x2A, 0x38}, 0x0120},
        {{0x9D}, 0x0040},
        {{0x1D}, 0x0080},
        {{0x01}, 0x0200},
        {{0x9C}, 0x0400},
        {{0x1C}, 0},  // the main Enter key
        {{0xC8, 0xCB, 0x9D}, 0x0045},
    };
    for (const Row& row : rows) {
        std::memset(Fake.keys, 0, sizeof(Fake.keys));
        for (const uint8_t key : row.keys)
            Fake.keys[key] = 0x80;
        Poll();
        EXPECT_EQ(Controls, row.controls);
    }
}

TEST_F(InputTest, MouseSummary) {
    Fake.mouse = {-3, 70000, 120, {0x80, 0x80, 0, 0}};
    Poll();
    EXPECT_EQ(MouseInput.left, 1);
    EXPECT_EQ(MouseInput.right, 2);
    EXPECT_EQ(MouseInput.buttons, 3);
    EXPECT_EQ(MouseInput.xMotion, -3);
    EXPECT_EQ(MouseInput.yMotion, 70000 - 65536);
    Fake.mouse = {};
    Poll();
    EXPECT_EQ(MouseInput.buttons, 0);
    EXPECT_EQ(MouseInput.xMotion, 0);
}

TEST_F(InputTest, KeyboardIsSharedAndMouseExclusive) {
    const std::vector<std::string> expected = {"DirectInputCreate", "CreateDevice", "SetDataFormat",
                                               "SetShared",         "Acquire",      "CreateDevice",
                                               "SetDataFormat",     "SetExclusive", "Acquire"};
    EXPECT_EQ(Fake.calls, expected);
}

// Whichever call fails, everything made before it is released again, and only once.
TEST(InputStart, FailureAtAnyCallReleasesEverything) {
    for (int failing = 0; failing < 9; failing++) {
        Fake = {};
        Fake.failingCall = failing;
        InputDevices devices = {};
        EXPECT_FALSE(StartInput(nullptr, nullptr, devices)) << failing;
        EXPECT_EQ(Fake.heldObjects, 0) << failing;
        EXPECT_EQ(devices.input, nullptr);
        EXPECT_EQ(devices.keyboard, nullptr);
        EXPECT_EQ(devices.mouse, nullptr);
        StopInput(devices);
        EXPECT_EQ(Fake.heldObjects, 0) << failing;
    }
}
