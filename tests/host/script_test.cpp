#include "core/script.h"

#include <gtest/gtest.h>

namespace {

TEST(ScriptText, EveryActionIsRead) {
    Script script;
    std::string error;
    ASSERT_TRUE(ParseScript("# a walk\r\n"
                            "120 down UP\t# and run\r\n"
                            "\n"
                            "121 up NUMPADENTER\n"
                            " 0ms tap SPACE\n"
                            "3500ms mouse -32768 32767\n"
                            "5 button right down\n"
                            "6 button left up\n"
                            "7 focus gained\n"
                            "8 wait 200\n"
                            "9 shot out/a.png\n"
                            "4294967295 quit",
                            "walk.txt", script, error))
        << error;
    ASSERT_EQ(script.lines.size(), 10u);
    const auto& lines = script.lines;
    EXPECT_EQ(lines[0].number, 2u);
    EXPECT_EQ(lines[0].when, 120u);
    EXPECT_TRUE(lines[0].isFrame);
    EXPECT_EQ(lines[0].action, ScriptAction::KeyDown);
    EXPECT_EQ(lines[0].code, 0xC8);
    EXPECT_EQ(lines[1].action, ScriptAction::KeyUp);
    EXPECT_EQ(lines[1].code, 0x9C);
    EXPECT_EQ(lines[2].action, ScriptAction::Tap);
    EXPECT_FALSE(lines[2].isFrame);
    EXPECT_EQ(lines[3].when, 3500u);
    EXPECT_EQ(lines[3].x, -32768);
    EXPECT_EQ(lines[3].y, 32767);
    EXPECT_EQ(lines[4].code, 1);
    EXPECT_TRUE(lines[4].on);
    EXPECT_EQ(lines[5].code, 0);
    EXPECT_FALSE(lines[5].on);
    EXPECT_TRUE(lines[6].on);
    EXPECT_EQ(lines[7].milliseconds, 200u);
    EXPECT_EQ(lines[8].file, "out/a.png");
    EXPECT_EQ(lines[9].action, ScriptAction::Quit);
}

TEST(ScriptText, AWrongLineIsNamedWithWhatWasExpected) {
    const struct {
        const char* line;
        const char* expected;
    } CASES[] = {
        {"0 quit", "\"0\" is neither a frame"},
        {"-1 quit", "\"-1\" is neither a frame"},
        {"4294967296 quit", "is neither a frame"},
        {"12s quit", "\"12s\" is neither a frame"},
        {"ms quit", "\"ms\" is neither a frame"},
        {"12 ms quit", "unknown action \"ms\""},
        {"12", "an action is missing"},
        {"12 press UP", "unknown action \"press\""},
        {"12 down", "expected down KEY"},
        {"12 down DIK_UP", "expected down KEY"},
        {"12 tap up", "expected tap KEY"},
        {"12 tap UP DOWN", "expected tap KEY"},
        {"12 mouse 5", "expected mouse DX DY"},
        {"12 mouse 5 32768", "expected mouse DX DY"},
        {"12 mouse 5 1.5", "expected mouse DX DY"},
        {"12 button middle down", "expected button left|right down|up"},
        {"12 button left", "expected button left|right down|up"},
        {"12 focus", "expected focus lost|gained"},
        {"12 wait -1", "expected wait MS"},
        {"12 shot", "expected shot FILE.png"},
        {"12 quit now", "expected quit"},
    };
    for (const auto& [line, expected] : CASES) {
        Script script;
        std::string error;
        EXPECT_FALSE(ParseScript(std::string("1 quit\n\n") + line + "\n2 quit\n", "a.txt", script, error)) << line;
        EXPECT_TRUE(error.starts_with("a.txt:3: ")) << error;
        EXPECT_NE(error.find(expected), std::string::npos) << error;
    }
}

}  // namespace
