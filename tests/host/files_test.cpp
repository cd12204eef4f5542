#include "core/testing.h"
#include "host/files.h"
#include "host/win32.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        folder_ = fs::path(testing::TempDir()) / "host_files_test";
        fs::remove_all(folder_);
        fs::create_directories(folder_ / "frontend");
        fs::create_directories(folder_ / "game" / "Data");
        std::ofstream(folder_ / "frontend" / "TITLE.bmp") << "upper";
        std::ofstream(folder_ / "frontend" / "title.bmp") << "lower";
        std::ofstream(folder_ / "game" / "Data" / "zero.msh") << "mesh";
        std::ofstream(folder_ / "empty").flush();
        SetTestDataFolder(folder_.string());
    }

    void TearDown() override { fs::remove_all(folder_); }

    std::string Below(const char* path) const { return (folder_ / path).string(); }

    fs::path folder_;
};

TEST_F(Files, AreFoundWithBackslashesAndInAnyCaseTheExactNameFirst) {
    EXPECT_EQ(HostResolvePath("FrontEnd\\title.bmp"), Below("frontend/title.bmp"));
    EXPECT_EQ(HostResolvePath("FrontEnd\\TITLE.bmp"), Below("frontend/TITLE.bmp"));
    EXPECT_EQ(HostResolvePath("FrontEnd\\Title.Bmp"), Below("frontend/TITLE.bmp")) << "alphabetical order decides";
    EXPECT_EQ(HostResolvePath("GAME\\data//ZERO.MSH"), Below("game/Data/zero.msh"));
    EXPECT_EQ(HostResolvePath("Game\\new\\file"), Below("game/new/file")) << "what is missing keeps its name";
    EXPECT_EQ(HostResolvePath((folder_.string() + "/GAME").c_str()), Below("game")) << "an absolute path";
}

TEST_F(Files, AreOpenedOnlyWhenTheyAreFiles) {
    EXPECT_EQ(HostOpenFile("game", "rb"), nullptr);
    EXPECT_EQ(HostOpenFile("game\\none", "rb"), nullptr);
    std::FILE* file = HostOpenFile("Game\\NEW.raw", "wb");
    ASSERT_NE(file, nullptr);
    std::fclose(file);
    EXPECT_TRUE(fs::exists(Below("game/NEW.raw")));
}

TEST_F(Files, AreReadThroughHandles) {
    const auto open = [](const char* path) {
        return CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    EXPECT_EQ(open("none"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(open("game"), INVALID_HANDLE_VALUE);
    HANDLE file = open("game\\data\\zero.msh");
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetFileSize(file, nullptr), 4u);
    char text[8] = {};
    DWORD got = 0;
    EXPECT_TRUE(ReadFile(file, text, sizeof text, &got, nullptr)) << "the end of the file is no failure";
    EXPECT_EQ(std::string(text, got), "mesh");
    EXPECT_TRUE(CloseHandle(file));
    file = open("EMPTY");
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetFileSize(file, nullptr), 0u);
    EXPECT_TRUE(CloseHandle(file));
}

TEST_F(Files, AFatalMessageNamesTheFileAndTheFolderSearched) {
    testing::internal::CaptureStderr();
    HostReportFatal("Can't load the world.\n", "game\\world.bgm");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(text, "tarnwick: Can't load the world.\ngame\\world.bgm (looked for in " + folder_.string() + ")\n");
    ASSERT_EQ(TestMachine.messageBoxes.size(), 1u);
    EXPECT_EQ("tarnwick: " + TestMachine.messageBoxes[0] + "\n", text);
}

}  // namespace
