#include "session/recording.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

std::vector<uint8_t> FileBytes(const std::string& name) {
    std::ifstream stream(SOURCE_FOLDER "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Recording, IsWrittenAsItWasRead) {
    for (const char* name :
         {"tests/replay/keys.rec", "tests/replay/keys_accelerator.rec", "fuzz/corpus/recording/failure"}) {
        const std::vector<uint8_t> bytes = FileBytes(name);
        RecordingReader reader;
        RecordingHeader header{};
        std::string error;
        ASSERT_TRUE(reader.Open(bytes, header, error)) << error;
        RecordingWriter writer(header);
        for (bool ended = false; !ended;) {
            Section section;
            ASSERT_TRUE(reader.Next(section, error)) << error;
            writer.Add(section);
            ended = section.end.has_value();
        }
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), writer.Bytes().begin(), writer.Bytes().end())) << name;
    }
}

TEST(Recording, CutOrDamagedAnywhereItIsRefused) {
    std::vector<uint8_t> bytes = FileBytes("tests/replay/again.rec");
    RecordingHeader header{};
    uint32_t frames = 0, framesBeforeTheCut = 0;
    std::string error;
    ASSERT_TRUE(CheckRecording(bytes, header, frames, error)) << error;
    for (size_t length = bytes.size() % 7 + 6; length < bytes.size(); length += 7)
        ASSERT_FALSE(CheckRecording(std::span(bytes).first(length), header, framesBeforeTheCut, error)) << length;
    EXPECT_EQ(error, "the recording is damaged at byte " + std::to_string(bytes.size() - 1) + ", in game frame " +
                         std::to_string(frames + 1) + ": it ends too early; copy it again, or record it again");
    for (size_t place = 0; place < bytes.size(); place += 4) {
        bytes[place] ^= 4;
        ASSERT_FALSE(CheckRecording(bytes, header, framesBeforeTheCut, error)) << "byte " << place;
        EXPECT_EQ(error.starts_with("this is a recording of version 5"), place == 8) << error;
        bytes[place] ^= 4;
    }
}

}  // namespace
