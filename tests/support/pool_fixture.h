// A test with a fresh pool and files of its own making.
#pragma once

#include "memory/pool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

class PoolFixture : public testing::Test {
protected:
    void SetUp() override { FreshPool(POOL_BYTES); }
    void TearDown() override { PoolForget(); }

    void FreshPool(size_t bytes) {
        memory_.assign(bytes, 0x55);
        PoolInit(memory_.data(), memory_.data() + memory_.size());
    }

    // The path of a file that holds these bytes until the next call or the end of the test.
    const char* FileOf(const std::vector<uint8_t>& bytes) {
        filePath_ = (std::filesystem::temp_directory_path() / "file.bin").string();
        std::ofstream stream(filePath_, std::ios::binary | std::ios::trunc);
        stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return filePath_.c_str();
    }

private:
    std::vector<uint8_t> memory_;
    std::string filePath_;
};
