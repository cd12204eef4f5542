#include "machine/options.h"

#include "host/dinput.h"
#include "machine/game.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(CommandLine, RefusesWhatItDoesNotKnowInOneLine) {
    constexpr uint8_t KEYS[] = {DIK_F1, DIK_F2, DIK_F3};
    HostGame game = *CurrentGame;
    game.program = "game";
    game.levelKeys = KEYS;
    const HostGame* const before = std::exchange(CurrentGame, &game);
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"--fast"}, "unknown option \"--fast\"; --help lists them"},
        {{"level3"}, "unknown option \"level3\"; --help lists them"},
        {{"--level"}, "--level wants 1..3"},
        {{"--level", "4"}, "--level wants 1..3, not \"4\""},
        {{"--level", "+3"}, "--level wants 1..3, not \"+3\""},
        {{"--frames", "0"}, "--frames wants N, not \"0\""},
        {{"--frames", "4294967296"}, "--frames wants N, not \"4294967296\""},
        {{"--frames", "10x"}, "--frames wants N, not \"10x\""},
        {{"--window", "800x"}, "--window wants WxH, 320x240 and up, not \"800x\""},
        {{"--shot", "5:"}, "--shot wants FRAME:FILE.png, not \"5:\""},
        {{"--smooth", "yes"}, "--smooth wants on|off, not \"yes\""},
        {{"--motion", "1,2:m.txt"}, "--motion wants X,Y,Z:FILE, not \"1,2:m.txt\""},
        {{"--motion", "1,2,3:"}, "--motion wants X,Y,Z:FILE, not \"1,2,3:\""},
        {{"--data", ""}, "--data wants DIR, not \"\""},
    };
    for (auto [words, line] : rows) {
        words.insert(words.begin(), "game");
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        Options options;
        testing::internal::CaptureStderr();
        EXPECT_EQ(ParseOptions(static_cast<int>(arguments.size()), arguments.data(), options), OptionsResult::Wrong);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), std::string("game: ") + line + "\n");
    }
    CurrentGame = before;
}

}  // namespace
