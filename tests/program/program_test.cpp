// The whole program from its command line: how it starts, ends, and what it leaves behind.
#include "run_program.h"

#include <gtest/gtest.h>

namespace {

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

TEST_F(Program, EveryLevelNamesItsOwnWorld) {
    const char* worlds[] = {"level1\\assault.bgm", "level2\\bigone.bgm", "level3\\house.bgm", "level4\\soulflum.bgm",
                            "level5\\dside.bgm",   "level6\\swamp.bgm",  "level7\\wild.bgm",  "level8\\assault.bgm"};
    for (int level = 1; level <= 8; level++) {
        const ProgramResult result = RunWithoutData("--level " + std::to_string(level) + " --frames 1");
        EXPECT_TRUE(Says(result.errors, worlds[level - 1]));
    }
}

TEST_F(Program, EscapeInTheFrontEndEndsIt) {
    program.Write("keys.txt", "100ms tap ESCAPE\n");
    const ProgramResult result = RunWithoutData("--script keys.txt");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("Free Mem"), std::string::npos) << "no game was started";
}

TEST_F(Program, KeysOfAScriptReachTheFrontEnd) {
    program.Write("keys.txt", "100ms tap SPACE\n200ms tap F5\n300ms tap F11\n");
    EXPECT_TRUE(Says(RunWithoutData("--script keys.txt").errors, "dside.bgm"));
}

TEST_F(Program, WrongOptionIsNamed) {
    const ProgramResult result = program.Run("--levle 3");
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(Says(result.errors, "--levle"));
}

}  // namespace
