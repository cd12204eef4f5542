#include "host/ddraw.h"
#include "host/win32.h"
#include "input/devices.h"
#include "input/message_queue.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

namespace {

UINT lastDispatched = 0;

LRESULT Procedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    lastDispatched = message;
    return static_cast<LRESULT>(wParam);
}

class Messages : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        window_ = OpenTestWindow(Procedure);
    }

    BOOL Peek() { return PeekMessageA(&message_, nullptr, 0, 0, PM_REMOVE); }

    HWND window_ = nullptr;
    MSG message_{};
};

TEST_F(Messages, ComeInOrderAndQuitComesLastAndOnce) {
    PostQuitMessage(7);
    PostToWindow(MM_MCINOTIFY, 1, 2);
    PostToWindow(WM_SYSKEYDOWN, VK_TAB, 0);
    ASSERT_TRUE(Peek());
    EXPECT_EQ(message_.message, MM_MCINOTIFY);
    EXPECT_EQ(message_.hwnd, window_);
    EXPECT_EQ(DispatchMessageA(&message_), 1);
    EXPECT_EQ(lastDispatched, MM_MCINOTIFY);
    ASSERT_TRUE(Peek());
    EXPECT_EQ(message_.message, WM_SYSKEYDOWN);
    ASSERT_TRUE(Peek());
    EXPECT_EQ(message_.message, WM_QUIT);
    EXPECT_EQ(message_.wParam, 7u);
    EXPECT_FALSE(Peek());
    EXPECT_EQ(message_.message, WM_QUIT) << "a record is left alone when there is no message";
}

TEST_F(Messages, WaitingEndsWithAMessageThatWasNotThereAtTheLastPeek) {
    EXPECT_FALSE(Peek());
    int turns = 0;
    TestMachine.onWait = [&] {
        if (++turns == 3) PostToWindow(MM_MCINOTIFY, 1, 0);
    };
    EXPECT_TRUE(WaitMessage());
    EXPECT_EQ(turns, 3);
    EXPECT_TRUE(WaitMessage()) << "not yet peeked at";
    EXPECT_EQ(turns, 3);
    PostToWindow(MM_MCINOTIFY, 2, 0);
    Peek();  // the second message has been there, too
    turns = 0;
    EXPECT_TRUE(WaitMessage());
    EXPECT_EQ(turns, 3);
}

}  // namespace
