#include "host/files.h"
#include "host/win32.h"
#include "session/find_data.h"
#include "testing/test_machine.h"

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
        SetTestDataFolder(folder_.string());
    }

    std::string Below(const char* path) const { return (folder_ / path).string(); }

    fs::path folder_;
};

TEST_F(Files, OfTheGameAreBesideTheProgramOrWhereItIsInstalled) {
    const fs::path beside = folder_ / "bin/data", installed = folder_ / "share/tarnwick";
    const auto folders = DataFolders(folder_ / "bin");
    fs::create_directories(beside);
    fs::create_directories(installed / "game");
    EXPECT_EQ(FindDataFolder(folders), installed) << "a folder without game/ is none";
    fs::create_directories(beside / "game");
    EXPECT_EQ(FindDataFolder(folders), beside);
    EXPECT_EQ(FindDataFolder({folder_ / "bin"}), "");
}

TEST_F(Files, AreFoundWithBackslashesAndInAnyCaseTheExactNameFirst) {
    EXPECT_EQ(HostResolvePath("FrontEnd\\title.bmp"), Below("frontend/title.bmp"));
    EXPECT_EQ(HostResolvePath("FrontEnd\\TITLE.bmp"), Below("frontend/TITLE.bmp"));
    EXPECT_EQ(HostResolvePath("FrontEnd\\Title.Bmp"), Below("frontend/TITLE.bmp")) << "alphabetical order decides";
    EXPECT_EQ(HostResolvePath("GAME\\data//ZERO.MSH"), Below("game/Data/zero.msh"));
    EXPECT_EQ(HostResolvePath("Game\\new\\file"), Below("game/new/file")) << "what is missing keeps its name";
    EXPECT_EQ(HostResolvePath((folder_.string() + "/GAME").c_str()), Below("game")) << "an absolute path";
}

TEST_F(Files, AreOpenedOnlyWhenTheyAreFiles) {
    const auto open = [](const char* path) {
        return CreateFileA(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    for (const char* path : {"game", "game\\none"}) {
        EXPECT_EQ(HostOpenFile(path, "rb"), nullptr);
        EXPECT_EQ(open(path), INVALID_HANDLE_VALUE);
    }
    std::FILE* created = HostOpenFile("Game\\NEW.raw", "wb");
    ASSERT_NE(created, nullptr);
    std::fclose(created);
    EXPECT_TRUE(fs::exists(Below("game/NEW.raw")));
    for (const auto& [path, text] : {std::pair{"game\\data\\zero.msh", "mesh"}, {"game\\new.RAW", ""}}) {
        HANDLE file = open(path);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetFileSize(file, nullptr), std::string(text).size());
        char read[8] = {};
        DWORD got = 0;
        EXPECT_TRUE(ReadFile(file, read, sizeof read, &got, nullptr)) << "the end of the file is no failure";
        EXPECT_EQ(std::string(read, got), text);
        EXPECT_TRUE(CloseHandle(file));
    }
}

}  // namespace
