// The real ways out of the program.
#include "memory/shutdown.h"
#include "memory/system.h"

#include "memory/fatal.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "support/test_window.h"
#include "testing/test_machine.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>

namespace {

class System : public ::testing::Test {
protected:
    void SetUp() override { UseTestMachine(); }
    void TearDown() override {
        ::testing::internal::CaptureStdout();
        SystemShutdown();
        ::testing::internal::GetCapturedStdout();
    }
};

// glibc's malloc gives 16 mod 32, which costs one granule of the pool.
bool IsWholePool(uint32_t bytes) {
    return bytes == 8388544 || bytes == 8388576;
}

std::string ShutdownOutput() {
    ::testing::internal::CaptureStdout();
    SystemShutdown();
    return ::testing::internal::GetCapturedStdout();
}

}  // namespace

TEST_F(System, ShutdownReportsTheFreeBytesClosesTheDisplayAndMayBeRepeated) {
    SystemInit();
    ScreenResIndex = 0;
    ASSERT_TRUE(OpenSoftwareDisplay(OpenTestWindow()));
    PoolMalloc(1000);
    const uint32_t left = PoolFreeTotal();
    EXPECT_EQ(ShutdownOutput(), "Free Mem when running. " + std::to_string(left) + " \n");
    EXPECT_EQ(PoolReady + FileLayerReady + TimerStarted, 0);
    EXPECT_EQ(PoolMalloc(1), nullptr);
    EXPECT_EQ(DisplayState, DISPLAY_NONE);
    EXPECT_EQ(Display.directDraw, nullptr);
    EXPECT_EQ(ShutdownOutput(), "Free Mem when running. 0 \n");
    SystemInit();
    EXPECT_TRUE(IsWholePool(PoolFreeTotal()));
}

TEST_F(System, FatalErrorShutsDownAndExitsWithItsCode) {
    const auto fail = [](int code, const char* path) {
        SystemInit();
        FatalError(code, "No such thing", path);
    };
    EXPECT_EXIT(fail(0, "game\\data\\x.bgm"), testing::ExitedWithCode(0), "No such thing.*x\\.bgm");
    EXPECT_EXIT(fail(-1, nullptr), testing::ExitedWithCode(255), "No such thing");
}

#ifndef TARNWICK_SANITIZED  // whose shadow memory the limit would refuse
TEST_F(System, WithoutMemoryForThePoolTheExitStatusIsOne) {
    const auto start = [] {
        const rlimit none = {1 << 20, 1 << 20};
        setrlimit(RLIMIT_AS, &none);
        void* volatile taken;  // volatile, or the loop that uses up what is left is optimised away
        do {
            taken = std::malloc(1 << 20);
        } while (taken);
        SystemInit();
    };
    EXPECT_EXIT(start(), testing::ExitedWithCode(1), "Could not allocate memory pool.");
}
#endif
