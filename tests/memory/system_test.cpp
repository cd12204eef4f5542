// The real ways out of the program, in child processes: exit status, standard output, standard error.
#include "memory/system.h"

#include "core/testing.h"
#include "memory/fatal.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/device/device.h"
#include "render/render_tables.h"
#include "support/test_window.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Ending {
    int status;  // exit status; -1: killed
    std::string output, errors;
};

std::string Contents(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

Ending RunInChild(const std::function<void()>& body) {
    const std::string stem = ::testing::TempDir() + "tarnwick_child" + std::to_string(getpid());
    const std::string output = stem + ".out", errors = stem + ".err";
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (!std::freopen(output.c_str(), "w", stdout) || !std::freopen(errors.c_str(), "w", stderr)) _exit(99);
        body();
        std::fflush(nullptr);
        _exit(98);  // came back
    }
    int status = 0;
    waitpid(child, &status, 0);
    const Ending ending = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents(output), Contents(errors)};
    std::remove(output.c_str());
    std::remove(errors.c_str());
    return ending;
}

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
    struct Row {
        int code, status;
        const char* path;
    };
    for (const Row& row : {Row{0, 0, "game\\data\\x.bgm"}, Row{-1, 255, nullptr}}) {
        const Ending ending = RunInChild([&row] {
            SystemInit();
            PoolMalloc(64);
            FatalError(row.code, "No such thing", row.path);
        });
        EXPECT_EQ(ending.status, row.status);
        EXPECT_EQ(ending.output.rfind("Free Mem when running. 8388", 0), 0u) << ending.output;
        EXPECT_EQ(std::count(ending.output.begin(), ending.output.end(), '\n'), 1);
        EXPECT_NE(ending.errors.find("No such thing"), std::string::npos);
        EXPECT_EQ(ending.errors.find("x.bgm") != std::string::npos, row.path != nullptr);
    }
}

#ifndef TARNWICK_SANITIZED  // whose shadow memory the limit would refuse
TEST_F(System, WithoutMemoryForThePoolTheExitStatusIsOne) {
    const Ending ending = RunInChild([] {
        const rlimit none = {1 << 20, 1 << 20};
        setrlimit(RLIMIT_AS, &none);
        void* volatile taken;  // volatile, or the loop that uses up what is left is optimised away
        do {
            taken = std::malloc(1 << 20);
        } while (taken);
        SystemInit();
    });
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.output, "Free Mem when running. 0 \n");
    EXPECT_NE(ending.errors.find("Could not allocate memory pool."), std::string::npos);
}
#endif
