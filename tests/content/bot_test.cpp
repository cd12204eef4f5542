// A player without a plan in the shipped levels: whatever keys are held, he does not fall out of the world, get
// stuck in the air or meet a number that is not finite.

#include "program/run_program.h"
#include "records/levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace {

#ifdef TARNWICK_SANITIZED
constexpr int FRAME_SHARE = 20;  // a sanitized build is that much slower
#else
constexpr int FRAME_SHARE = 1;
#endif

// How long each level is played; level 3, whose rooms are many and narrow, for longer.
int FramesOf(int level) {
    return (level == 3 ? 20000 : 4000) / FRAME_SHARE;
}

// Keys change every 5 to 60 frames; forward is held most of the time.
std::string RandomScript(int frames, unsigned seed) {
    std::mt19937 random(seed);
    std::ostringstream script;
    const std::pair<const char*, unsigned> percents[] = {{"UP", 70},   {"LSHIFT", 15}, {"DOWN", 10},
                                                         {"LEFT", 30}, {"RIGHT", 30},  {"SPACE", 35}};
    for (int frame = 10; frame < frames; frame += 5 + static_cast<int>(random() % 56))
        for (const auto& [key, percent] : percents)
            script << frame << (random() % 100 < percent ? " down " : " up ") << key << '\n';
    return script.str();
}

class Bot : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Levels, Bot, testing::Range(1, LEVEL_COUNT + 1),
                         [](const auto& row) { return "level" + std::to_string(row.param); });

TEST_P(Bot, StaysInTheWorld) {
    const int level = GetParam();
    const int frames = FramesOf(level);
    const ProgramRun program;
    program.Write("keys.txt", RandomScript(frames, 1234u + static_cast<unsigned>(level)));
    const ProgramResult result =
        program.Run("--data '" DATA_FOLDER "' --renderer software --level " + std::to_string(level) +
                    " --script keys.txt --trace t.jsonl --record bot.rec --frames " + std::to_string(frames));
    ASSERT_EQ(result.status, 0) << result.errors;

    std::istringstream trace(program.Read("t.jsonl"));
    int count = 0;
    int inTheAir = 0;
    for (std::string line; std::getline(trace, line); ++count) {
        ASSERT_EQ(line.find("null"), std::string::npos) << line;
        inTheAir = line.find("\"contact\":0") == std::string::npos ? 0 : inTheAir + 1;
        ASSERT_LT(inTheAir, 400) << "fallen out of the world, or stuck: " << line;
    }
    EXPECT_EQ(count, frames);

    const int replayed = std::min(frames, 1000);
    const ProgramResult again = program.Run("--data '" DATA_FOLDER "' --replay bot.rec --frames " +
                                            std::to_string(replayed) + " --from " + std::to_string(replayed / 2));
    EXPECT_EQ(again.status, 0) << "the same without drawing the first half: " << again.errors;
}

}  // namespace
