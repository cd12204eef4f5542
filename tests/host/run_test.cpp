#include "host/win32.h"
#include "machine/log.h"
#include "session/trace.h"
#include "testing/test_machine.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace {

TEST(Trace, ALineHasItsFieldsInOrderAndNoNumberThatIsNone) {
    HostFrameReport frame{};
    frame.position[1] = 0.1f;
    frame.slope = std::numeric_limits<float>::quiet_NaN();
    frame.camera[2] = -1e30f;
    frame.shots = frame.position;
    const std::string line = TraceLine(1, TakeFields(frame), 0, 0, {});
    EXPECT_TRUE(line.starts_with(
        "{\"frame\":1,\"ticks\":0,\"level\":0,\"state\":0,\"pos\":[0,0.100000001,0],\"vel\":[0,0,0],\"heading\":0,"
        "\"contact\":0,\"slope\":null,\"time0\":0,\"camera\":[0,0,-1.00000002e+30],\"angles\":[0,0,0],\"polys\":0,"
        "\"lights\":[],\"shots\":[0,0.100000001,0],\"random\":0,\"digest\":"))
        << line;
    EXPECT_TRUE(line.ends_with("\",\"dropped\":0,\"pixels\":null}")) << "no picture was shown";
}

TEST(Run, TheLogTellsWhenPolygonsBeginToBeDropped) {
    const auto play = [] {
        Options options;
        options.verbose = true;
        StartLog(options);
        for (const uint32_t dropped : {0u, 3u, 2u, 0u, 5u}) {
            HostFrameReport frame{};
            frame.dropped = dropped;
            HostEndOfFrame(frame);
        }
        std::_Exit(0);
    };
    EXPECT_EXIT(play(), testing::ExitedWithCode(0),
                "^host: frame 2: no room for 3 polygons of the character\n"
                "host: frame 5: no room for 5 polygons of the character\n$");
}

TEST(Guard, TurnsFaultsAndExceptionsIntoCodes) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(HostGuard([] {}), 0u);
        EXPECT_EQ(HostGuard([] { throw std::runtime_error("step"); }), EXCEPTION_UNHANDLED);
#ifndef TARNWICK_SANITIZED
        EXPECT_EQ(HostGuard([] { std::raise(SIGSEGV); }), EXCEPTION_ACCESS_VIOLATION);
        EXPECT_EQ(HostGuard([] { std::raise(SIGFPE); }), EXCEPTION_INT_DIVIDE_BY_ZERO);
        EXPECT_EQ(HostGuard([] { std::raise(SIGILL); }), EXCEPTION_ILLEGAL_INSTRUCTION);
#endif
    }
}

}  // namespace
