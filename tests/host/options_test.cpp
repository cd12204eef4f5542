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
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"--fast"}, "unknown option \"--fast\"; --help lists them"},
        {{"level3"}, "unknown option \"level3\"; --help lists them"},
        {{"--level"}, "--level wants 1..8"},
        {{"--level", "9"}, "--level wants 1..8, not \"9\""},
        {{"--level", "+3"}, "--level wants 1..8, not \"+3\""},
        {{"--frames", "0"}, "--frames wants N, not \"0\""},
        {{"--frames", "4294967296"}, "--frames wants N, not \"4294967296\""},
        {{"--frames", "10x"}, "--frames wants N, not \"10x\""},
        {{"--window", "800x"}, "--window wants WxH, 320x240 and up, not \"800x\""},
        {{"--shot", "5:"}, "--shot wants FRAME:FILE.png, not \"5:\""},
        {{"--data", ""}, "--data wants DIR, not \"\""},
    };
    for (const auto& [words, line] : rows) {
        Options options;
        std::string error;
        EXPECT_EQ(Parse(words, options, error), OptionsResult::Wrong) << words[0];
        EXPECT_EQ(error, std::string("tarnwick: ") + line + "\n");
    }
}

}  // namespace
