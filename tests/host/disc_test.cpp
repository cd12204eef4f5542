#include "interfaces/disc.h"

#include "machine/track_reader.h"
#include "support/sound_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// The sound library does not free all of a damaged Ogg file; its leaks are not ours to report.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libvorbis\n";
}

namespace {

namespace fs = std::filesystem;

class DiscFolder : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(folder_); }
    void TearDown() override { fs::remove_all(folder_); }

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }

    static std::vector<int16_t> ReadAll(TrackReader& reader, size_t frames) {
        std::vector<int16_t> samples(frames * 2);
        reader.Read(samples);
        return samples;
    }

    std::string folder_ = testing::TempDir() + "/disc";
    std::string problem_;
};

TEST_F(DiscFolder, ThreeFormatsGiveTheSameSamplesOverAndOver) {
    constexpr int FRAMES = 3000;
    const std::vector<short> wave = Triangle(FRAMES, 2);
    const std::tuple<const char*, int, int> rows[] = {{"a.wav", WAV, 0}, {"a.flac", FLAC, 0}, {"a.ogg", OGG, 1000}};
    for (const auto& [name, format, tolerance] : rows) {
        WriteSound(Path(name), format, 44100, 2, wave);
        const auto reader = TrackReader::Open(Path(name), problem_);
        ASSERT_TRUE(reader) << name << problem_;
        EXPECT_EQ(reader->Milliseconds(), 69u);
        const std::vector<int16_t> read = ReadAll(*reader, FRAMES * 2 + 100);
        double difference = 0.0;
        for (size_t i = 0; i < read.size(); ++i) {
            ASSERT_NEAR(read[i], wave[i % wave.size()], tolerance) << name << " sample " << i;
            difference += std::abs(read[i] - wave[i % wave.size()]);
        }
        EXPECT_LE(difference / static_cast<double>(read.size()), tolerance / 10.0) << name;
    }
    const auto reader = TrackReader::Open(Path("a.flac"), problem_);
    reader->SetSpan(10, 20);
    const std::vector<int16_t> read = ReadAll(*reader, 500);
    EXPECT_EQ(read[0], wave[441 * 2]);
    EXPECT_EQ(read[441 * 2], wave[441 * 2]) << "the span begins again";
}

TEST_F(DiscFolder, WhatIsNoTrackIsLeftOutAndNamesMayBeInAnyCase) {
    for (const char* name : {"Track02.WAV", "TRACK05.wav", "track05.flac", "track1.wav", "track01.wav", "track99.wav",
                             "track04.mp3", "notes.txt"})
        WriteSound(Path(name), WAV, 44100, 2, Triangle(441, 2));
    fs::create_directory(Path("track06.ogg"));
    Write("track07.flac", "");
    Write("track08.ogg", "OggS and no more");
    Disc disc = ReadDisc(folder_);
    EXPECT_EQ(disc.lastTrack, 9u);
    ASSERT_EQ(disc.tracks.size(), 2u);
    EXPECT_EQ(disc.tracks[2].milliseconds, 10u);
    EXPECT_EQ(disc.tracks[5].path, Path("TRACK05.wav"));
    EXPECT_EQ(ReadDisc(folder_ + "/none").lastTrack, 0u);

    const auto problem = [&](int format, int rate, int channels, int frames) {
        WriteSound(Path("track02.wav"), format, rate, channels, Triangle(frames, channels));
        EXPECT_FALSE(TrackReader::Open(Path("track02.wav"), problem_));
        return problem_;
    };
    EXPECT_EQ(problem(WAV, 44100, 8, 100), "8 channels, not one or two");
    EXPECT_EQ(problem(WAV, 4000000, 2, 100), "4000000 Hz, not 8000 to 192000");
    EXPECT_EQ(problem(WAV, 44100, 2, 0), "no sound in it");
    EXPECT_EQ(problem(SF_FORMAT_WAV | SF_FORMAT_GSM610, 44100, 1, 400), "neither plain WAV nor FLAC nor Ogg Vorbis");
    EXPECT_EQ(problem(SF_FORMAT_AU | SF_FORMAT_PCM_16, 44100, 2, 100), "neither WAV nor FLAC nor Ogg Vorbis");
}

}  // namespace
