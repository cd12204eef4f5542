#include "session/recording.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr uint32_t FRAMES = 40;  // with two full ones

// Steps of every size and sign, rows of answers that stay and change, lists that grow and end.
Section RandomSection(uint32_t frame, std::mt19937& random) {
    const auto below = [&](uint32_t end) { return static_cast<uint32_t>(random()) % end; };
    Section section;
    if (frame % 3 == 0) {
        section.answers[ANSWER_CLOCK] = {{1, {UINT32_MAX}}, {UINT32_MAX, {0}}};
        section.answers[ANSWER_KEYS] = {{1, {DEVICE_READ, 0, 255, int64_t{below(256)}}}, {9, {DEVICE_LOST}}};
        section.answers[ANSWER_MOUSE] = {{1, {DEVICE_READ, INT32_MIN, INT32_MAX, -1, 15}}};
        section.answers[ANSWER_MESSAGE] = {{2, {0, 0, 0}}, {1, {0x3B9, INT64_MIN, INT64_MAX}}};
        section.answers[ANSWER_FILE] = {{1, {int64_t{below(1000)}}}};
    }
    for (size_t field = 0; field < FIELD_COUNT; ++field) {
        if (FRAME_FIELDS[field].isSlow && !IsFullFrame(frame)) continue;
        const uint32_t count = FRAME_FIELDS[field].count ? FRAME_FIELDS[field].count : below(4);
        for (uint32_t i = 0; i < count; ++i)
            section.frame.fields[field].push_back(below(3) ? 0x80000000 + below(3) - 1
                                                           : static_cast<uint32_t>(random()));
    }
    section.frame.digest = static_cast<uint32_t>(random());
    if (frame % 2) section.frame.pixels = static_cast<uint32_t>(random());
    return section;
}

std::vector<Section> RandomSections() {
    std::mt19937 random(7);
    std::vector<Section> sections;
    for (uint32_t frame = 1; frame <= FRAMES; ++frame)
        sections.push_back(RandomSection(frame, random));
    sections.emplace_back().end = RunEnd::Failure;
    return sections;
}

std::vector<uint8_t> Written(const std::vector<Section>& sections) {
    RecordingWriter writer({true});
    for (const Section& section : sections)
        writer.Add(section);
    return writer.Bytes();
}

TEST(Recording, IsReadAsItWasWritten) {
    const std::vector<Section> sections = RandomSections();
    const std::vector<uint8_t> bytes = Written(sections);
    RecordingReader reader;
    RecordingHeader header{};
    std::string error;
    ASSERT_TRUE(reader.Open(bytes, header, error)) << error;
    EXPECT_TRUE(header.hasBoard);
    for (const Section& written : sections) {
        Section read;
        ASSERT_TRUE(reader.Next(read, error)) << error;
        for (int kind = 0; kind < ANSWER_KINDS; ++kind)
            EXPECT_EQ(read.answers[kind], written.answers[kind]);
        EXPECT_EQ(read.end, written.end);
        if (read.end) break;
        EXPECT_EQ(read.frame.fields, written.frame.fields);
        EXPECT_EQ(read.frame.digest, written.frame.digest);
        EXPECT_EQ(read.frame.pixels, written.frame.pixels);
    }
}

TEST(Recording, CutOrDamagedAnywhereItIsRefused) {
    std::vector<uint8_t> bytes = Written(RandomSections());
    RecordingHeader header{};
    uint32_t frames = 0;
    std::string error;
    ASSERT_TRUE(CheckRecording(bytes, header, frames, error)) << error;
    EXPECT_EQ(frames, FRAMES);
    for (size_t length = bytes.size() % 7 + 6; length < bytes.size(); length += 7)
        ASSERT_FALSE(CheckRecording(std::span(bytes).first(length), header, frames, error)) << length;
    EXPECT_EQ(error, "the recording is damaged at byte " + std::to_string(bytes.size() - 1) +
                         ", in game frame 41: it ends too early; copy it again, or record it again");
    for (size_t place = 0; place < bytes.size(); place += 4) {
        bytes[place] ^= 4;
        ASSERT_FALSE(CheckRecording(bytes, header, frames, error)) << "byte " << place;
        EXPECT_EQ(error.starts_with("this is a recording of version 5"), place == 8) << error;
        bytes[place] ^= 4;
    }
}

}  // namespace
