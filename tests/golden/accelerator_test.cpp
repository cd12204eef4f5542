// The two frozen test levels with the accelerator: what the game asks of it, and what the boards make of that.
// Recorded things are renewed like the others, see golden_test.cpp.
#include "golden/pictures.h"
#include "program/run_program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path GOLDENS = SOURCE_FOLDER "/tests/golden";

struct Level {
    const char* name;
    int number;
};

class Accelerator : public testing::TestWithParam<Level> {
protected:
    static std::string Options(int level, const std::string& script) {
        return "--data " SOURCE_FOLDER "/tests/levels/data --renderer accelerator --level " + std::to_string(level) +
               " --script " + script;
    }
    ProgramRun program;
};
const auto LEVELS = testing::Values(Level{"alpha", 1}, Level{"beta", 2});

// ---- The calls

using Calls = std::vector<std::string>;  // a line each, a triangle with its corners

const std::string TURNED_TO_A_WALL = "20 tap F6\n20 button left down\n20 mouse 1000 0\n";  // where few polygons are

class GlideCalls : public Accelerator {
protected:
    void Play(int level, const std::string& keys) {
        program.Write("keys.txt", keys);
        const ProgramResult result = program.Run(Options(level, "keys.txt"), "tests/glide_recorder");
        ASSERT_EQ(result.status, 0) << result.errors;
        std::ifstream file(program.Folder() / "glide_calls.txt");
        for (std::string line; std::getline(file, line);)
            line.starts_with(' ') ? calls.back() += "\n" + line : calls.emplace_back(line);
    }

    static std::string Name(const std::string& call) { return call.substr(0, call.find_first_of(" \n")); }

    Calls Frame(size_t number) const {
        Calls frame;
        size_t swaps = 0;
        for (const std::string& call : calls) {
            if (swaps == number + 1) frame.push_back(call);
            swaps += call.starts_with("grBufferSwap");
        }
        return frame;
    }

    // What each kind of call has set last, up to the end of a frame; textures change all the time.
    std::map<std::string, std::string> StatesAfter(size_t frame) const {
        std::map<std::string, std::string> states;
        size_t swaps = 0;
        for (const std::string& call : calls) {
            swaps += call.starts_with("grBufferSwap");
            if (swaps == frame + 2) break;
            if (!call.starts_with("grDraw") && !call.starts_with("guTex") && !call.starts_with("grTexClamp"))
                states[Name(call)] = call;
        }
        return states;
    }

    Calls calls;
};
INSTANTIATE_TEST_SUITE_P(Levels, GlideCalls, LEVELS, [](const auto& row) { return std::string(row.param.name); });

TEST_P(GlideCalls, AreThoseRecorded) {
    Play(GetParam().number, TURNED_TO_A_WALL + "60 quit\n");
    std::string frame;
    for (const std::string& call : Frame(58))
        frame += call + "\n";
    const fs::path golden = GOLDENS / (std::string(GetParam().name) + "_glide_calls.txt");
    if (std::getenv("TARNWICK_RENEW_GOLDENS")) std::ofstream(golden) << frame;
    std::stringstream recorded;
    recorded << std::ifstream(golden).rdbuf();
    std::istringstream now(frame);
    int number = 1;
    for (std::string was, is; std::getline(recorded, was); ++number) {
        std::getline(now, is);
        ASSERT_EQ(is, was) << golden << ":" << number;
    }
    EXPECT_GT(number, 200);
    EXPECT_TRUE(now.peek() == EOF) << "there are more";
}

using AGamesGlideCalls = GlideCalls;

TEST_F(AGamesGlideCalls, LeaveTheStatesAsTheyWereAfterTheOutlineView) {
    Play(1, TURNED_TO_A_WALL + "60 tap W\n64 tap W\n70 quit\n");
    EXPECT_EQ(StatesAfter(68), StatesAfter(58));
    EXPECT_NE(StatesAfter(62), StatesAfter(58));
    std::set<std::string> drawn;
    for (const std::string& call : Frame(62))
        drawn.insert(Name(call));
    EXPECT_TRUE(drawn.contains("grDrawLine"));
    EXPECT_FALSE(drawn.contains("grDrawTriangle"));
}

TEST_F(AGamesGlideCalls, SetUpASecondGameLikeTheFirst) {
    Play(1, "10 tap ESCAPE\n9000ms tap SPACE\n9100ms tap F1\n9200ms tap F12\n20 quit\n");
    std::vector<size_t> starts;  // of the games
    for (size_t i = 0; i < calls.size(); ++i)
        if (calls[i] == "grGlideInit") starts.push_back(i);
    ASSERT_EQ(starts.size(), 2u);
    bool fogIsDefined = false;  // the first table is made of what was left behind, and made again once all is known
    for (size_t i = 0; !calls[starts[0] + i].starts_with("guTexSource"); ++i) {
        const std::string& call = calls[starts[0] + i];
        if (fogIsDefined || Name(call) != "grFogTable") {
            ASSERT_EQ(calls[starts[1] + i], call) << i;
        }
        fogIsDefined |= Name(call) == "grFogTable";
    }
    const Calls shutDown(calls.begin() + static_cast<long>(starts[1]) - 3,
                         calls.begin() + static_cast<long>(starts[1]));
    EXPECT_EQ(shutDown, (Calls{"grSstWinClose", "grSstIdle", "grGlideShutdown"}));
}

// ---- The pictures

class AcceleratorPictures : public Accelerator {
protected:
#ifdef TARNWICK_SANITIZED
    void SetUp() override {
        GTEST_SKIP() << "hundreds of pictures take minutes here";
    }
#endif
    // By the names of the shots in the level's script; none: this board cannot be had.
    std::map<std::string, Image> Play(const std::string& board) {
        const ProgramResult result = program.Run(
            Options(GetParam().number, SOURCE_FOLDER "/tests/golden/" + std::string(GetParam().name) + ".txt") +
            " --board " + board);
        errors = result.errors;
        std::map<std::string, Image> pictures;
        for (const fs::directory_entry& entry : fs::directory_iterator(program.Folder())) {
            const std::string name = entry.path().stem();
            if (result.status == 0 && name.starts_with(GetParam().name)) pictures[name] = ReadPng(entry.path());
        }
        return pictures;
    }
    std::string errors;
};
INSTANTIATE_TEST_SUITE_P(Levels, AcceleratorPictures, LEVELS,
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(AcceleratorPictures, OfTheCpuBoardAreAsRecordedAndOfTheGpuBoardTheSame) {
    const std::map<std::string, Image> cpu = Play("cpu");
    ASSERT_GE(cpu.size(), 4u) << errors;
    for (const auto& [name, picture] : cpu) {
        const fs::path golden = GOLDENS / (name + "_accelerator.png");
        if (!fs::exists(golden)) continue;  // some are enough
        if (std::getenv("TARNWICK_RENEW_GOLDENS")) WritePng(golden, Halved(picture));
        EXPECT_EQ(DifferingPixels(Halved(picture), ReadPng(golden), 1), 0u) << name;
    }
    const std::map<std::string, Image> gpu = Play("gpu");
    if (errors.find("no OpenGL") != errors.npos) GTEST_SKIP() << errors;
    ASSERT_EQ(gpu.size(), cpu.size()) << errors;
    for (const auto& [name, picture] : gpu)
        EXPECT_LT(DifferingPixels(picture, cpu.at(name), 2), 100u) << name << ": of 640 x 480";
}

}  // namespace
