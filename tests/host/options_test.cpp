#include "core/options.h"

#include <gtest/gtest.h>

namespace {

OptionsResult Parse(std::vector<std::string> words, Options& options, std::string& error) {
    words.insert(words.begin(), "tarnwick");
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    testing::internal::CaptureStderr();
    const OptionsResult result = ParseOptions(static_cast<int>(arguments.size()), arguments.data(), options);
    error = testing::internal::GetCapturedStderr();
    return result;
}

TEST(CommandLine, SetsWhatItNames) {
    Options options;
    std::string error;
    EXPECT_EQ(
        Parse({"--data", "my data", "--window", "800x600", "--level", "8", "--renderer", "accelerator", "--headless",
               "--board", "cpu", "--frames", "4294967295", "--shot", "12:a:b.png", "--shot", "3:c.png", "--verbose"},
              options, error),
        OptionsResult::Run);
    EXPECT_EQ(error, "");
    EXPECT_EQ(options.data, "my data");
    EXPECT_EQ(options.windowWidth, 800);
    EXPECT_EQ(options.windowHeight, 600);
    EXPECT_EQ(options.level, 8);
    EXPECT_EQ(options.renderer, RendererChoice::Accelerator);
    EXPECT_EQ(options.board, BoardChoice::Cpu);
    EXPECT_TRUE(options.headless);
    EXPECT_TRUE(options.verbose);
    EXPECT_EQ(options.frames, 4294967295u);
    ASSERT_EQ(options.shots.size(), 2u);
    EXPECT_EQ(options.shots[0].frame, 12u);
    EXPECT_EQ(options.shots[0].file, "a:b.png");
    Options none;
    EXPECT_EQ(Parse({}, none, error), OptionsResult::Run);
    EXPECT_NE(none.data, "") << "the build's own data";
}

TEST(CommandLine, RefusesWhatItDoesNotKnowInOneLine) {
    const struct {
        std::vector<std::string> words;
        const char* line;
    } CASES[] = {
        {{"--fast"}, "tarnwick: unknown option \"--fast\"; --help lists them\n"},
        {{"level3"}, "tarnwick: unknown option \"level3\"; --help lists them\n"},
        {{"--level"}, "tarnwick: --level wants 1..8\n"},
        {{"--level", "9"}, "tarnwick: --level wants 1..8, not \"9\"\n"},
        {{"--level", "+3"}, "tarnwick: --level wants 1..8, not \"+3\"\n"},
        {{"--frames", "0"}, "tarnwick: --frames wants N, not \"0\"\n"},
        {{"--frames", "4294967296"}, "tarnwick: --frames wants N, not \"4294967296\"\n"},
        {{"--frames", "10x"}, "tarnwick: --frames wants N, not \"10x\"\n"},
        {{"--window", "800"}, "tarnwick: --window wants WxH, not \"800\"\n"},
        {{"--window", "800x"}, "tarnwick: --window wants WxH, not \"800x\"\n"},
        {{"--renderer", "Software"}, "tarnwick: --renderer wants software|accelerator, not \"Software\"\n"},
        {{"--shot", "5"}, "tarnwick: --shot wants FRAME:FILE.png, not \"5\"\n"},
        {{"--shot", "5:"}, "tarnwick: --shot wants FRAME:FILE.png, not \"5:\"\n"},
        {{"--data", ""}, "tarnwick: --data wants DIR, not \"\"\n"},
    };
    for (const auto& [words, line] : CASES) {
        Options options;
        std::string error;
        EXPECT_EQ(Parse(words, options, error), OptionsResult::Wrong) << words[0];
        EXPECT_EQ(error, line);
    }
}

TEST(CommandLine, HelpAndVersionEndTheProgramWell) {
    for (const char* word : {"--help", "--version"}) {
        Options options;
        std::string error;
        testing::internal::CaptureStdout();
        EXPECT_EQ(Parse({word, "--nonsense"}, options, error), OptionsResult::Done);
        EXPECT_NE(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(error, "");
    }
}

}  // namespace
