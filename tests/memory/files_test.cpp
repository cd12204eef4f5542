#include "memory/files.h"

#include "memory/pool.h"
#include "testing/test_machine.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace fs = std::filesystem;

namespace {

class Files : public ::testing::Test {
protected:
    void SetUp() override {
        UseTestMachine();
        folder = fs::path(::testing::TempDir()) / "tarnwick_files";
        fs::create_directories(folder / "Game" / "Data");
        SetTestDataFolder(folder.string());
        PoolInit(memory, memory + sizeof(memory));
        whole = PoolFreeTotal();
    }
    void TearDown() override {
        if (ReadStream) std::fclose(ReadStream);
        ReadStream = nullptr;
        PoolForget();
    }

    void Write(const std::string& name, const std::string& bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    void OpenStream(const std::string& bytes) {
        if (ReadStream) std::fclose(ReadStream);
        Write("stream", bytes);
        ReadStream = OpenGameFile("stream", "rb");
        ASSERT_NE(ReadStream, nullptr);
    }

    fs::path folder;
    uint32_t whole = 0;
    alignas(32) uint8_t memory[4096];
};

}  // namespace

TEST_F(Files, NumbersAreBigEndianAndBytesPastTheEndCountAsMinusOne) {
    OpenStream(std::string("\x12\x34\x00\x00\x01\x02\x80\x00\x00\x01\x12\x34\x56", 13));
    EXPECT_EQ(ReadWord(), 0x1234);
    EXPECT_EQ(ReadLong(), 258u);
    EXPECT_EQ(ReadLong(), 0x80000001u);
    EXPECT_EQ(ReadLong(), 0x123455FFu);
    EXPECT_EQ(ReadWord(), 0xFEFF);
    EXPECT_EQ(ReadLong(), 0xFEFEFEFFu);
    OpenStream("\x12");
    EXPECT_EQ(ReadWord(), 0x11FF);
    std::fclose(ReadStream);
    ReadStream = nullptr;
    EXPECT_EQ(ReadWord(), 0xFEFF);
    EXPECT_EQ(BytesLeft(), 0u);
    EXPECT_FALSE(ReadBlock(memory, 1));
}

TEST_F(Files, WholeFileByTheGamesPathAndNoChangeOfThePoolOnFailure) {
    Write("large", std::string(sizeof(memory), 'x'));
    EXPECT_EQ(LoadMalloc("large"), nullptr);
    for (const char* path : {"missing", "Game", "missing\\file", "large\\file"}) {
        EXPECT_EQ(FileSize(path), -1) << path;
        EXPECT_EQ(LoadMalloc(path), nullptr) << path;
    }
    EXPECT_EQ(PoolFreeTotal(), whole);
    Write("Game/Data/Level.bgm", std::string(33, 'x'));
    EXPECT_EQ(FileSize("game\\DATA\\level.BGM"), 33);
    void* block = LoadMalloc("game\\data\\level.bgm");
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::memcmp(block, std::string(33, 'x').data(), 33), 0);
    EXPECT_EQ(PoolFreeTotal(), whole - 64 - 32);
    Write("empty", "");
    EXPECT_EQ(FileSize("empty"), 0);
    EXPECT_NE(LoadMalloc("empty"), nullptr) << "a block without data";
}
