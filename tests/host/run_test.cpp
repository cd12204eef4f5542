#include "host/fake_game.h"
#include "host/host_process.h"
#include "host/probe.h"
#include "host/win32.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <limits>
#include <png.h>
#include <sstream>
#include <stdexcept>

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The values of one field of a trace, one a frame.
std::vector<int> Field(const std::string& trace, const std::string& name) {
    std::vector<int> values;
    for (const std::string& line : Lines(trace))
        values.push_back(std::stoi(line.substr(line.find("\"" + name + "\":") + name.size() + 3)));
    return values;
}

class Run : public testing::Test {
protected:
    // Plays level 1 with the script.
    HostOutcome Play(const std::string& script, std::vector<std::string> options = {}) {
        folder_.Write("script", script);
        for (const char* word : {"--level", "1", "--script", "script", "--trace", "trace"})
            options.emplace_back(word);
        return folder_.Run(options, FakeGame);
    }

    std::vector<int> Traced(const char* field) { return Field(folder_.Read("trace"), field); }

    HostFolder folder_;
};

TEST_F(Run, LevelAndRendererAreChosenByTheirKeysOnce) {
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"--level", "3", "--frames", "2"}, "level 3 software\n"},
        {{"--level", "8", "--frames", "2", "--renderer", "accelerator"}, "level 8 accelerator\n"},
        {{"--level", "2", "--script", "script"}, "level 2 software\n"},
    };
    folder_.Write("script", "5 tap ESCAPE\n60000ms quit\n");
    for (const auto& [options, out] : rows) {
        const HostOutcome outcome = folder_.Run(options, FakeGame);
        EXPECT_EQ(outcome.status, 3) << "the game's own";
        EXPECT_EQ(outcome.out, out);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(Run, TheSameInputGivesTheSameTrace) {
    const char* script =
        "8 up UP\n8 down UP\n3 down UP\n5 mouse 7 0\n9 up UP\n4 tap SPACE\n6 wait 500\n7 button left down\n";
    EXPECT_EQ(Play(script, {"--frames", "10"}).status, 3);
    const std::string trace = folder_.Read("trace");
    EXPECT_EQ(Lines(trace).size(), 10u);
    EXPECT_EQ(Traced("frame"), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(Traced("state"), (std::vector<int>{0, 0, 1, 3, 1, 1, 5, 5, 4, 4}));
    EXPECT_EQ(Traced("contact"), (std::vector<int>{0, 0, 0, 0, 7, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Traced("ticks"), (std::vector<int>{16, 16, 16, 16, 16, 502, 16, 16, 16, 16}));
    Play(script, {"--frames", "10"});
    EXPECT_EQ(folder_.Read("trace"), trace);
}

TEST_F(Run, ATraceLineHasItsFieldsInOrderAndNoNumberThatIsNone) {
    const auto report = [](HINSTANCE, HINSTANCE, char*, int) {
        HostFrameReport frame{};
        frame.position[1] = 0.1f;
        frame.slope = std::numeric_limits<float>::quiet_NaN();
        frame.camera[2] = -1e30f;
        HostEndOfFrame(frame);
        return 0;
    };
    EXPECT_EQ(folder_.Run({"--trace", "trace"}, report).status, 0);
    const std::string line = folder_.Read("trace");
    EXPECT_TRUE(line.starts_with(
        "{\"frame\":1,\"ticks\":0,\"level\":0,\"state\":0,\"pos\":[0,0.100000001,0],\"vel\":[0,0,0],\"heading\":0,"
        "\"contact\":0,\"slope\":null,\"time0\":0,\"camera\":[0,0,-1.00000002e+30],\"angles\":[0,0,0],\"polys\":0,"
        "\"digest\":"))
        << line;
    EXPECT_TRUE(line.ends_with("\",\"pixels\":null}\n")) << "no picture was shown";
}

TEST_F(Run, EndingEarlyIsSaid) {
    const HostOutcome outcome = Play("12 quit\n", {"--frames", "300"});
    EXPECT_EQ(outcome.err, "ended after 12 of 300 frames\n");
    EXPECT_EQ(outcome.status, 3);
    const auto leave = [](HINSTANCE, HINSTANCE, char*, int) -> int { ExitProcess(0xC0000005); };
    const HostOutcome left = folder_.Run({"--shot", "7:a.png"}, leave);
    EXPECT_EQ(left.err, "ended after 0 of 7 frames\n");
    EXPECT_EQ(left.status, 5) << "eight bits of the code";
}

// Nobody presses a key: in the pictures the Windows key ends the game, on the choice screens the host does.
TEST_F(Run, AScriptThatLeadsNowhereEndsByItself) {
    const std::pair<const char*, int> CASES[] = {
        {"# nothing\n", 3},
        {"100ms tap SPACE\n", 0},
        {"100ms tap SPACE\n200ms tap F2\n", 0},
        {"100ms tap SPACE\n200ms tap F12\n300ms tap F11\n", 3},
        {"50 quit\n", 3},
        {"100ms tap SPACE\n90000ms tap F12\n100000ms tap F11\n100100ms quit\n", 3},
    };
    for (const auto& [script, status] : CASES) {
        folder_.Write("script", script);
        const HostOutcome outcome = folder_.Run({"--script", "script"}, FakeGame);
        EXPECT_EQ(outcome.status, status) << script;
        EXPECT_EQ(outcome.err, "") << script;
    }
}

TEST_F(Run, FramesAskedForAreWaitedFor) {
    EXPECT_EQ(folder_.Run({"--level", "8", "--frames", "50"}, FakeGame).err, "") << "more than a minute without events";
    folder_.Write("script", "50 down UP\n");
    folder_.Run({"--level", "8", "--script", "script", "--trace", "trace"}, FakeGame);
    EXPECT_EQ(Traced("frame").size(), 50u + 60000 / 1600 + 1) << "a minute after the last line";
}

TEST_F(Run, WithoutTheFocusTheGameWaitsForTheLineThatGivesItBack) {
    EXPECT_EQ(Play("3 focus lost\n5 down UP\n10 focus gained\n", {"--frames", "6"}).status, 3);
    EXPECT_EQ(Traced("state"), (std::vector<int>{0, 0, 0, 0, 1, 1}));
    EXPECT_EQ(Play("3 focus lost\n5 quit\n5000ms focus gained\n").status, 3) << "a line with a time comes first";
    EXPECT_EQ(Traced("frame").size(), 5u);
    EXPECT_EQ(Play("3 focus lost\n").status, 0) << "nothing gives it back";
}

TEST_F(Run, ShotsShowWhatTheirFramePresented) {
    const HostOutcome outcome =
        Play("2 shot two.png\n300ms shot later.png\n", {"--frames", "20", "--shot", "255:never.png"});
    EXPECT_EQ(outcome.err, "ended after 20 of 255 frames\n");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_TRUE(png_image_begin_read_from_file(&image, folder_.Path("two.png").c_str())) << image.message;
    EXPECT_EQ(image.width * image.height, 320u * 240u);
    image.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(image));
    ASSERT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
    EXPECT_EQ(pixels[0], 0x00) << "colour 2 of the system's palette";
    EXPECT_EQ(pixels[1], 0x80);
    EXPECT_NE(folder_.Read("later.png"), "");
    EXPECT_EQ(folder_.Read("never.png"), "");
}

TEST_F(Run, WhatCannotBeUsedEndsWithStatusTwo) {
    folder_.Write("bad", "1 quit\n2 press UP\n");
    const std::pair<std::vector<std::string>, const char*> CASES[] = {
        {{"--nonsense"}, "tarnwick: unknown option"},
        {{"--script", "bad"}, "bad:2: unknown action \"press\""},
        {{"--script", "missing"}, "missing: cannot be read"},
        {{"--trace", "none/trace"}, "tarnwick: cannot write the trace none/trace: "},
        {{"--log", "none/log"}, "tarnwick: cannot write the log none/log: "},
        {{"--data", "nowhere"}, "tarnwick: There is no data folder nowhere"},
    };
    for (const auto& [options, error] : CASES) {
        const HostOutcome outcome = folder_.Run(options, FakeGame);
        EXPECT_EQ(outcome.status, 2) << error;
        EXPECT_TRUE(outcome.err.starts_with(error)) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

int GuardEverything(HINSTANCE, HINSTANCE, char*, int) {
    const auto check = [](DWORD expected, void (*step)()) {
        const DWORD code = HostGuard(step);
        if (code != expected) std::printf("%08X instead of %08X\n", code, expected);
    };
    for (int round = 0; round < 2; ++round) {
        check(0, [] {});
        check(EXCEPTION_UNHANDLED, [] { throw std::runtime_error("step"); });
#ifndef TARNWICK_SANITIZED
        check(EXCEPTION_ACCESS_VIOLATION, [] { std::raise(SIGSEGV); });
        check(EXCEPTION_ACCESS_VIOLATION, [] { std::raise(SIGBUS); });
        check(EXCEPTION_INT_DIVIDE_BY_ZERO, [] { std::raise(SIGFPE); });
        check(EXCEPTION_ILLEGAL_INSTRUCTION, [] { std::raise(SIGILL); });
        check(EXCEPTION_ACCESS_VIOLATION, [] {
            volatile int* volatile nowhere = nullptr;
            *nowhere = 1;
        });
#endif
    }
    return 0;
}

TEST_F(Run, TheGuardTurnsFaultsAndExceptionsIntoCodes) {
    const HostOutcome outcome = folder_.Run({}, GuardEverything);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.status, 0);
}

}  // namespace
