#include "core/script.h"

#include <gtest/gtest.h>

#include <sstream>

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
    std::ostringstream read;
    for (const ScriptLine& line : script.lines)
        read << line.number << ' ' << line.when << (line.isFrame ? " " : "ms ") << static_cast<int>(line.action) << ' '
             << int{line.code} << ' ' << line.x << ' ' << line.y << ' ' << line.on << ' ' << line.milliseconds << ' '
             << line.file << '\n';
    EXPECT_EQ(read.str(), "2 120 0 200 0 0 0 0 \n"
                          "4 121 1 156 0 0 0 0 \n"
                          "5 0ms 2 57 0 0 0 0 \n"
                          "6 3500ms 3 0 -32768 32767 0 0 \n"
                          "7 5 4 1 0 0 1 0 \n"
                          "8 6 4 0 0 0 0 0 \n"
                          "9 7 5 0 0 0 1 0 \n"
                          "10 8 6 0 0 0 0 200 \n"
                          "11 9 7 0 0 0 0 0 out/a.png\n"
                          "12 4294967295 8 0 0 0 0 0 \n");
}

TEST(ScriptText, AWrongLineIsNamedWithWhatWasExpected) {
    const std::pair<const char*, const char*> CASES[] = {
        {"0 quit", "\"0\" is neither a frame"},
        {"4294967296 quit", "is neither a frame"},
        {"12s quit", "\"12s\" is neither a frame"},
        {"12 ms quit", "unknown action \"ms\""},
        {"12", "an action is missing"},
        {"12 press UP", "unknown action \"press\""},
        {"12 down", "expected down KEY"},
        {"12 down DIK_UP", "expected down KEY"},
        {"12 tap up", "expected tap KEY"},
        {"12 mouse 5", "expected mouse DX DY"},
        {"12 mouse 5 32768", "expected mouse DX DY"},
        {"12 mouse 5 1.5", "expected mouse DX DY"},
        {"12 button middle down", "expected button left|right down|up"},
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
