#include "session/script.h"

#include <gtest/gtest.h>

namespace {

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
        {"12 photo 1 2 nan 0 0 a.png", "expected photo X Y Z PITCH YAW FILE.png"},
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

TEST(ScriptText, AByteOrderMarkIsSkippedAndALongWordCutShort) {
    Script script;
    std::string error;
    EXPECT_TRUE(ParseScript("\xEF\xBB\xBF"
                            "1 quit\n",
                            "a.txt", script, error))
        << error;
    EXPECT_FALSE(ParseScript("1 " + std::string(1000, 'x') + "\x1B\n", "a.txt", script, error));
    EXPECT_LT(error.size(), 250u);
    EXPECT_FALSE(ParseScript("\x1B[2J\n", "a.txt", script, error));
    EXPECT_TRUE(error.starts_with("a.txt:1: \"?[2J\" is")) << error;
}

}  // namespace
