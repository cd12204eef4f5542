#include "platform/timer.h"

#include "machine/clock.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

namespace {

class Timer : public ::testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        MeasuredTicks = FrameTicks = 0;
        StartAt(1000);
    }

    static void StartAt(uint32_t milliseconds) {
        SetTestClock(milliseconds - TestMachine.clockStep);
        TimerReset();
    }

    // Plays a frame whose own work takes `milliseconds`, which the first reading of the wait shows.
    static uint32_t Frame(uint32_t milliseconds) {
        SetTestClock(ClockNow() + milliseconds - TestMachine.clockStep);
        FrameLimiter();
        FrameStep();
        return FrameTicks;
    }
};

}  // namespace

TEST_F(Timer, FramesAreCountedInWholeTicksBetweenTheMinimumAndTwelve) {
    struct Row {
        uint16_t minimum;
        uint32_t milliseconds, ticks, endsAfter;
    };
    const Row rows[] = {
        {1, 5, 1, 16},  {1, 16, 1, 16}, {1, 31, 1, 31},    {1, 32, 2, 32},    {4, 1, 4, 64},    {4, 63, 4, 64},
        {4, 70, 4, 70}, {4, 80, 5, 80}, {2, 191, 11, 191}, {1, 500, 12, 500}, {13, 1, 12, 208},
    };
    for (const uint32_t start : {1000u, 0xFFFFFFF8u}) {  // the clock wraps during every row of the second
        for (const Row& row : rows) {
            StartAt(start);
            MinFrameTicks = row.minimum;
            EXPECT_EQ(Frame(row.milliseconds), row.ticks) << row.milliseconds;
            EXPECT_EQ(ClockNow() - start, row.endsAfter) << row.milliseconds;
        }
    }
}

TEST_F(Timer, RestOfATickIsLost) {
    MinFrameTicks = 1;
    EXPECT_EQ(Frame(31), 1u);
    EXPECT_EQ(Frame(17), 1u);  // 48 ms in all, and 2 ticks
}
