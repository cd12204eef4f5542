// The whole program from its command line: how it starts, ends, and what it leaves behind.
#include "run_program.h"
#include "support/sound_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Program : public testing::Test {
protected:
    ProgramRun program;

    // A folder that holds neither pictures nor levels.
    ProgramResult RunWithoutData(const std::string& arguments) const {
        return program.Run("--data empty " + arguments);
    }
};

testing::AssertionResult Says(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "no \"" << part << "\" in:\n" << text;
}

TEST_F(Program, MissingLevelEndsItNamingFileAndFolder) {
    const ProgramResult result = RunWithoutData("--level 3 --frames 5");
    EXPECT_EQ(result.status, 0) << "the code of a missing world";
    EXPECT_TRUE(Says(result.errors, "No .BSP file found"));
    EXPECT_TRUE(Says(result.errors, "house.bgm"));
    EXPECT_TRUE(Says(result.errors, "empty"));
    EXPECT_TRUE(Says(result.errors, "ended after 0 of 5 frames"));
    EXPECT_EQ(result.output.find("No .BSP"), std::string::npos) << "standard output holds the game's own lines only";
}

TEST_F(Program, EscapeInTheFrontEndEndsIt) {
    program.Write("keys.txt", "100ms tap ESCAPE\n");
    const ProgramResult result = RunWithoutData("--script keys.txt");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("Free Mem"), std::string::npos) << "no game was started";
}

TEST_F(Program, WhatCannotBeUsedEndsWithStatusTwo) {
    program.Write("bad", "1 quit\n2 press UP\n");
    program.Write("long", std::string((16 << 20) + 1, ' '));
    const std::pair<const char*, const char*> rows[] = {
        {"--levle 3", "tarnwick: unknown option \"--levle\""},
        {"--script bad", "bad:2: unknown action \"press\""},
        {"--script missing", "missing: cannot be read: No such file"},
        {"--script empty", "empty: cannot be read: it is neither a file nor a pipe"},
        {"--script /dev/zero", "/dev/zero: cannot be read: it is neither a file nor a pipe"},
        {"--script long", "long: cannot be read: it is longer than 16 MiB"},
        {"--trace none/trace", "tarnwick: cannot write the trace none/trace: "},
        {"--log none/log", "tarnwick: cannot write the log none/log: "},
        {"--data nowhere", "tarnwick: There is no data folder nowhere"},
    };
    for (const auto& [arguments, error] : rows) {
        const ProgramResult result = program.Run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_TRUE(result.errors.starts_with(error)) << result.errors;
        EXPECT_EQ(result.output, "");
    }
}

// The program lies in a folder whose name has a blank and letters beyond ASCII, and is called from another folder.
TEST_F(Program, FindsItsDataWhereItIsUnpacked) {
    const fs::path unpacked = program.Folder() / "Spiele f\xC3\xBCr sp\xC3\xA4ter";
    fs::create_directories(unpacked / "bin");
    fs::create_directories(unpacked / "share");
    fs::copy_file(BUILD_FOLDER "/tarnwick", unpacked / "bin/tarnwick");
    fs::create_directory_symlink(SOURCE_FOLDER "/tests/levels/data", unpacked / "share/tarnwick");
    const std::string game = fs::relative(unpacked / "bin/tarnwick", BUILD_FOLDER).string();
    const ProgramResult result = program.Run("--level 2 --frames 1 --trace a.jsonl", game);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(program.Read("a.jsonl"), "");
}

class ProgramWithLevel : public Program {
protected:
    ProgramResult Play(const std::string& arguments) const {
        return program.Run("--data '" SOURCE_FOLDER "/tests/levels/data' --level 2 " + arguments);
    }
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string Pixels(const std::string& traceLine) {
    return traceLine.substr(traceLine.find("\"pixels\""));
}

TEST_F(ProgramWithLevel, PlaysTheFramesAskedFor) {
    const ProgramResult result = Play("--frames 60 --trace t.jsonl --shot 50:a.png");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(Says(result.output, "Free Mem when running.")) << "the normal way out";
    const std::vector<std::string> trace = Lines(program.Read("t.jsonl"));
    ASSERT_EQ(trace.size(), 60u);
    EXPECT_TRUE(Says(trace[0], "\"frame\":1,\"ticks\":0,\"level\":2"));
    EXPECT_TRUE(Says(trace[59], "\"frame\":60,\"ticks\":4"));
    EXPECT_EQ(trace[59].find("\"polys\":0,"), std::string::npos) << "the level is in view";
    EXPECT_FALSE(program.Read("a.png").empty());
}

TEST_F(ProgramWithLevel, ASignalEndsItWithTraceAndLogWhole) {
    for (const auto& [signal, status] : {std::pair{"HUP", 129}, {"INT", 130}, {"TERM", 143}}) {
        const ProgramResult result = program.Interrupt(
            "--data '" SOURCE_FOLDER "/tests/levels/data' --level 2 --frames 1000000 --trace t.jsonl --log log", signal,
            "t.jsonl");
        EXPECT_EQ(result.status, status) << signal;
        EXPECT_TRUE(Says(result.errors, " of 1000000 frames"));
        EXPECT_TRUE(program.Read("t.jsonl").ends_with("}\n"));
        EXPECT_TRUE(Says(program.Read("log"), "Free Mem when running.")) << "the last line";
    }
}

TEST_F(ProgramWithLevel, AFullDiskIsToldAndNeverRemoved) {
    std::filesystem::create_symlink("/dev/full", program.Folder() / "full");
    for (const auto& [arguments, error] : {std::pair{"--trace full", "the trace full is not complete: No space left"},
                                           {"--log full", "the log full is not complete: No space left"},
                                           {"--shot 2:full", "cannot write the picture full: No space left"}}) {
        const ProgramResult result = Play(std::string("--frames 2 ") + arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_TRUE(Says(result.errors, error));
        EXPECT_TRUE(std::filesystem::is_symlink(program.Folder() / "full")) << arguments;
    }
}

TEST_F(ProgramWithLevel, NothingElseGetsWhatIsWrittenToAClosedStandardOutput) {
    Play("--frames 3 --trace t.jsonl >&-; true");
    const std::vector<std::string> trace = Lines(program.Read("t.jsonl"));
    ASSERT_EQ(trace.size(), 3u);
    for (const std::string& line : trace)
        EXPECT_TRUE(line.starts_with("{\"frame\":")) << line;
}

TEST_F(ProgramWithLevel, MusicGoesRoundAndChangesNothing) {
    std::filesystem::create_directory(program.Folder() / "disc");
    WriteSound((program.Folder() / "disc/Track03.FLAC").string(), FLAC, 44100, 2, Triangle(44100 * 3 / 2, 2));
    EXPECT_EQ(Play("--frames 60 --trace 1.jsonl --disc disc --log log").status, 0);
    Play("--frames 60 --trace 2.jsonl --disc empty");
    EXPECT_EQ(program.Read("1.jsonl"), program.Read("2.jsonl"));
    const std::string log = program.Read("log");
    size_t place = 0;
    for (const char* event : {"cd: open, last track 4", "cd: play track 3, 1500 ms", "cd: notify successful, track 3",
                              "cd: replay track 3", "cd: stop", "cd: notify aborted, track 3", "cd: close"}) {
        place = log.find(event, place);
        ASSERT_NE(place, std::string::npos) << event << " is missing, or out of order, in:\n" << log;
    }
    unsigned start = 0, end = 0;
    std::sscanf(log.substr(log.rfind('\n', log.find("cd: play")) + 1).c_str(), "host: %u ms", &start);
    std::sscanf(log.substr(log.rfind('\n', log.find("cd: notify")) + 1).c_str(), "host: %u ms", &end);
    EXPECT_GE(end - start, 1500u);
    EXPECT_LE(end - start, 1500u + 64u) << "taken at the end of a frame";
}

TEST_F(ProgramWithLevel, SaysWhichBoardCannotBeHadAndWhy) {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    const ProgramResult gpu = Play("--renderer accelerator --board gpu --frames 2");
    unsetenv("SDL_VIDEODRIVER");
    EXPECT_EQ(gpu.status, 255);
    EXPECT_TRUE(Says(gpu.errors, "the gpu board cannot be used: no OpenGL 3.3 context: ")) << gpu.errors;
    const ProgramResult cpu = Play("--renderer accelerator --board-scale 2 --frames 2");
    EXPECT_EQ(cpu.status, 0);
    EXPECT_TRUE(Says(cpu.errors, "the cpu board draws 640 x 480 only")) << cpu.errors;
}

TEST_F(ProgramWithLevel, ASecondGameOfALevelLooksLikeTheFirst) {
    program.Write("keys.txt", "10 down L\n15 up L\n20 tap Y\n22 tap F6\n30 tap F5\n"  // leaves values changed behind
                              "150 tap ESCAPE\n19000ms tap SPACE\n19100ms tap F2\n19200ms tap F11\n");
    Play("--frames 100 --trace untouched.jsonl");
    Play("--script keys.txt --frames 250 --trace t.jsonl");
    const std::vector<std::string> untouched = Lines(program.Read("untouched.jsonl"));
    const std::vector<std::string> trace = Lines(program.Read("t.jsonl"));
    ASSERT_EQ(trace.size(), 250u);
    EXPECT_NE(Pixels(trace[99]), Pixels(untouched[99]));
    EXPECT_EQ(Pixels(trace[249]), Pixels(untouched[99])) << "100 frames into each game the camera has settled";
}

// How far the point at X,Y is in each picture from where it was in the one before; pixels.
std::vector<double> Steps(const std::string& motion) {
    std::vector<double> steps;
    double lastX = 0, lastY = 0;
    for (const std::string& line : Lines(motion)) {
        unsigned time = 0, frame = 0;
        double way = 0, x = 0, y = 0;
        if (std::sscanf(line.c_str(), "%u %u %lf %lf %lf", &time, &frame, &way, &x, &y) != 5 || frame < 40) continue;
        steps.push_back(std::hypot(x - lastX, y - lastY));
        lastX = x;
        lastY = y;
    }
    steps.erase(steps.begin());
    return steps;
}

TEST_F(ProgramWithLevel, SmoothPicturesFillTheTimeAndPhotosComeFromAnywhereWithoutChangingAFrame) {
    program.Write("keys.txt", "30 down UP\n40 down LEFT\n44 up LEFT\n50 down RCONTROL\n");
    program.Write("photos.txt", program.Read("keys.txt") +
                                    "45 photo 3837 -1000 12500 -10 180 a.png\n50 photo 3837 -900 12788 -20 90 b.png\n");
    const std::string motion = " --frames 60 --motion 3837,-1050,14200:";
    Play("--script keys.txt --trace off.jsonl" + motion + "off.txt");
    Play("--script photos.txt --smooth on --trace on.jsonl" + motion + "on.txt");
    EXPECT_EQ(program.Read("on.jsonl"), program.Read("off.jsonl"));
    const std::vector<double> off = Steps(program.Read("off.txt")), on = Steps(program.Read("on.txt"));
    EXPECT_EQ(on.size(), off.size() * 4 + 3) << "64 ms a frame, 16 ms a picture";
    EXPECT_LT(*std::max_element(on.begin(), on.end()), *std::max_element(off.begin(), off.end()) / 3);
    EXPECT_FALSE(program.Read("a.png").empty());
    EXPECT_NE(program.Read("a.png"), program.Read("b.png"));
}

TEST_F(ProgramWithLevel, TheSoftwareRenderersSizeChangesNoFrameAndAReplayNeedsNone) {
    Play("--frames 30 --trace small.jsonl --shot 30:small.png --record small.rec");
    Play("--frames 30 --trace large.jsonl --shot 30:large.png --software-size 640x480 --record large.rec");
    const std::string small = Lines(program.Read("small.jsonl"))[29], large = Lines(program.Read("large.jsonl"))[29];
    EXPECT_NE(Pixels(small), Pixels(large));
    EXPECT_EQ(small.substr(0, small.find("\"pixels\"")), large.substr(0, large.find("\"pixels\"")));
    const auto width = [&](const char* png) {
        return static_cast<unsigned char>(program.Read(png).at(18)) * 256 +
               static_cast<unsigned char>(program.Read(png).at(19));
    };
    EXPECT_EQ(width("small.png"), 320);
    EXPECT_EQ(width("large.png"), 640);
    for (const char* replay : {"--replay large.rec", "--replay small.rec --software-size 512x384"})
        EXPECT_EQ(program.Run(std::string("--data '" SOURCE_FOLDER "/tests/levels/data' ") + replay).status, 0);
}

TEST_F(ProgramWithLevel, DigitsAndArrowsWithEnterReachALevelWithoutFKeys) {
    const std::pair<const char*, const char*> rows[] = {
        {"\"level\":1,", "100ms tap SPACE\n500ms down 1\n800ms up 1\n900ms tap 2\n"},  // a digit held chooses once
        {"\"level\":2,", "100ms tap RETURN\n500ms tap LEFT\n600ms tap LEFT\n700ms tap RIGHT\n750ms tap DOWN\n"
                         "800ms tap RETURN\n900ms tap DOWN\n950ms tap DOWN\n1000ms tap RETURN\n"}};
    for (const auto& [level, script] : rows) {
        program.Write("keys.txt", script);
        const ProgramResult result =
            program.Run("--data '" SOURCE_FOLDER "/tests/levels/data' --script keys.txt --frames 2 "
                        "--trace t.jsonl --shot 2:picture.png");
        const std::vector<std::string> trace = Lines(program.Read("t.jsonl"));
        ASSERT_EQ(trace.size(), 2u) << script;
        EXPECT_TRUE(Says(trace[0], level)) << script;
        EXPECT_EQ(program.Read("picture.png")[18], '\x02') << "640 pixels wide: the accelerator";
    }
}

// Nobody presses a key. At the title pictures the Windows key ends the game, on the choice screens the host does.
TEST_F(ProgramWithLevel, AScriptThatLeadsNowhereEndsByItself) {
    for (const char* script : {"# nothing\n", "100ms tap SPACE\n200ms tap F2\n", "50 quit\n"}) {
        program.Write("keys.txt", script);
        const ProgramResult result = program.Run("--data '" SOURCE_FOLDER "/tests/levels/data' --script keys.txt");
        EXPECT_EQ(result.status, 0) << script;
        EXPECT_EQ(result.errors, "") << script;
    }
}

TEST_F(ProgramWithLevel, EndsAtItsLastFrameAndSaysWhenThatIsEarly) {
    const struct {
        const char *script, *options, *errors;
        size_t frames;
    } rows[] = {
        {"20 tap LWIN\n", "--frames 100", "ended after 20 of 100 frames\n", 20},
        {"12 quit\n", "--frames 100", "ended after 12 of 100 frames\n", 12},
        {"10 wait 70000\n", "--frames 20", "", 20},  // more than a minute without events
        {"3 focus lost\n5 down UP\n10 focus gained\n", "--frames 12", "", 12},
        {"3 focus lost\n5 quit\n5000ms focus gained\n", "", "", 5},  // a line with a time comes first
        {"3 focus lost\n", "--frames 12", "ended after 3 of 12 frames\n", 3},
    };
    for (const auto& row : rows) {
        program.Write("keys.txt", row.script);
        const ProgramResult result = Play(std::string("--script keys.txt --trace t.jsonl ") + row.options);
        EXPECT_EQ(result.status, 0) << row.script;
        EXPECT_EQ(result.errors, row.errors) << row.script;
        EXPECT_EQ(Lines(program.Read("t.jsonl")).size(), row.frames) << row.script;
    }
}

}  // namespace
