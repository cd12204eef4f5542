// Frames of the two frozen test levels, pixel for pixel. To renew them after a wanted change, and look at the
// difference as pictures before committing:
//
//     TARNWICK_RENEW_GOLDENS=1 build/tests/test_golden && git diff --stat tests/golden

#include "golden/pictures.h"
#include "program/run_program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace fs = std::filesystem;

namespace {

const fs::path GOLDENS = SOURCE_FOLDER "/tests/golden";

struct GoldenLevel {
    const char* name;  // of the script, and before the frame's number in its pictures' names
    int number;
};

class Golden : public testing::TestWithParam<GoldenLevel> {};
INSTANTIATE_TEST_SUITE_P(Levels, Golden, testing::Values(GoldenLevel{"alpha", 1}, GoldenLevel{"beta", 2}),
                         [](const auto& row) { return std::string(row.param.name); });

std::string Options(const GoldenLevel& level) {
    return "--data " SOURCE_FOLDER "/tests/levels/data --renderer software --level " + std::to_string(level.number) +
           " --script " SOURCE_FOLDER "/tests/golden/" + level.name + ".txt";
}

TEST_P(Golden, FramesAreAsRecorded) {
    const GoldenLevel& level = GetParam();
    const ProgramRun program;
    const ProgramResult result = program.Run(Options(level));
    ASSERT_EQ(result.status, 0) << result.errors;

    size_t compared = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(program.Folder())) {
        const std::string name = entry.path().filename();
        if (!name.starts_with(level.name) || !name.ends_with(".png")) continue;
        const fs::path golden = GOLDENS / name;
        if (std::getenv("TARNWICK_RENEW_GOLDENS")) {
            fs::copy_file(entry.path(), golden, fs::copy_options::overwrite_existing);
        }
        EXPECT_EQ(DifferingPixels(ReadPng(golden), ReadPng(entry.path()), 0), 0u)
            << "now " << entry.path() << ", recorded " << golden;
        compared += 1;
    }
    EXPECT_GE(compared, 4u);
}

TEST_P(Golden, FramesAreFilledPixelByPixel) {
    const ProgramResult result = ProgramRun().Run(Options(GetParam()), "tests/fill_checker");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("up to frame 200"), std::string::npos) << result.output;
}

}  // namespace
