#include "formats/files.h"
#include "musicc/arrangement.h"
#include "musicc/render.h"
#include "support/content_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sndfile.h>

namespace {

// Two bars: a drum, and a synth whose last note sounds on past the end.
const std::string PIECE = R"(tempo = 240
loudness = -12
[echo]
level = 0.5
[reverb]
seconds = 1.5
[[drum]]
name = "kick"
tone = [180, 50, 0.1]
noise_level = 0.3
ducks = true
[[synth]]
name = "lead"
voices = 3
sweep = 2
cutoff = 900
vibrato = [10, 5, 0.1]
glide = 0.05
amplitude = [0.01, 0.2, 0.6, 0.8]
drive = 0.3
reverb = 0.5
echo = 0.3
duck = 0.5
[[pattern]]
name = "beat"
instrument = "kick"
hits = "x...o...X...x..."
[[pattern]]
name = "tune"
instrument = "lead"
lowest = "a3"
steps = 1
notes = ". 1 2'! 0,? | * - c4+e4 -"
[[section]]
bars = 2
chords = "Am F/C"
play = ["beat", "tune"]
[[section.ramp]]
instrument = "lead"
gain = [-6, 0]
)";

Score Load(const std::string& text) {
    const std::string path = testing::TempDir() + "/piece.toml";
    WriteWholeFile(path, {text.begin(), text.end()});
    return LoadScore(path);
}

std::string With(const std::string& part, const std::string& other) {
    std::string text = PIECE;
    return text.replace(text.find(part), part.size(), other);
}

TEST(Musicc, ErrorsNameFileLineAndRemedy) {
    const struct {
        std::string text, message;
    } rows[] = {
        {With("tempo = 240", "tempo = 2"), "piece.toml:1: 'tempo' "},
        {With("tempo", "temop"), "piece.toml:1: 'temop' is not known here"},
        {With("voices = 3", "voices = 30"), "piece.toml:14: 'voices' "},
        {With("[10, 5, 0.1]", "[10, 5]"), "piece.toml:17: 'vibrato' has 2 numbers"},
        {With("0.6, 0.8]", "6, 0.8]"), "piece.toml:19: 'amplitude' sustains at 6: give 0 to 1"},
        {With("= \"kick\"\nhits", "= \"kik\"\nhits"), "piece.toml:26: 'instrument' names 'kik'"},
        {With("X...x...", "X...x.."), "piece.toml:27: 'hits' has 15 steps in bar 1: a bar has 16"},
        {With("o...", "o..y"), "piece.toml:27: 'hits' has 'y' in bar 1"},
        {With("* -", "h4 -"), "piece.toml:33: 'notes' has 'h4' in bar 2"},
        {With("0,? |", "|"), "piece.toml:33: 'notes' has 3 steps in bar 1"},
        {With("Am F/C", "Am Fx"), "piece.toml:36: 'chords' has 'Fx'"},
        {With("[\"beat\", \"tune\"]", "[\"beat\", \"\"]"), "piece.toml:37: 'play' has an empty lane"},
        {"tempo = 100", "there is no section"},
        {With("bars = 2", "bars = 400\nx = 1"), "piece.toml:36: 'x' is not known here"},
    };
    for (const auto& row : rows)
        ExpectRefusal(row.message, [&] { Load(row.text); });
    EXPECT_THROW(WriteSound(testing::TempDir() + "/piece.mp3", {0, 0}), ContentError);
}

// A track stays in memory until it is whole: neither a failure nor a kill leaves a cut one.
TEST(Musicc, WritesEveryKindOfSoundFileInOneGo) {
    std::vector<int16_t> samples;
    for (int i = 0; i < 20000; ++i)
        samples.push_back(static_cast<int16_t>(i * 7 % 9000));
    const std::pair<const char*, int> rows[] = {
        {"a.wav", SF_FORMAT_WAV}, {"a.flac", SF_FORMAT_FLAC}, {"a.ogg", SF_FORMAT_OGG}};
    for (const auto& [name, format] : rows) {
        const std::string path = testing::TempDir() + "/sounds/" + name;
        WriteSound(path, samples);
        SF_INFO info{};
        SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
        ASSERT_TRUE(file) << name;
        std::vector<int16_t> read(samples.size());
        EXPECT_EQ(sf_readf_short(file, read.data(), 10000), 10000) << name;
        EXPECT_EQ(info.frames, 10000);
        EXPECT_EQ(info.format & SF_FORMAT_TYPEMASK, format) << name;
        EXPECT_TRUE(read == samples || std::string(name) == "a.ogg") << name;
        sf_close(file);
    }
    std::filesystem::create_directory(testing::TempDir() + "/sounds/b.wav");
    ExpectRefusal("b.wav: is no regular file", [&] { WriteSound(testing::TempDir() + "/sounds/b.wav", samples); });
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(testing::TempDir() + "/sounds"), {}), 4);
}

TEST(Musicc, NotesFollowTheChordsAndTheRamps) {
    const Arrangement music = Arrange(Load(PIECE));
    EXPECT_EQ(music.length, 2 * SAMPLE_RATE);
    EXPECT_EQ(music.parts[1].size(), 8u) << "the bar is played twice";
    std::vector<int> pitches;
    for (const Note& note : music.parts[0])
        pitches.push_back(static_cast<int>(note.pitch));
    // Am from a3 on: a c e; 1 is a3, 2' the c of the octave above, 0, a2. F/C: a c f. And two notes by name.
    EXPECT_EQ(pitches, (std::vector<int>{57, 72, 45, 57, 60, 65, 60, 64}));
    const Note& late = music.parts[0][3];
    EXPECT_EQ(late.start, SAMPLE_RATE);
    EXPECT_EQ(late.length, static_cast<int64_t>(SAMPLE_RATE / 2 * 0.95));
    EXPECT_NEAR(late.level, 0.708, 0.001) << "half of 6 dB down";
    EXPECT_EQ(late.fromPitch, 45.0f) << "glides from the note before";
    EXPECT_EQ(music.parts[0][0].fromPitch, 57.0f) << "after a rest it does not";
}

TEST(Musicc, SoundIsTheSameEverywhereAndGoesRoundWithoutASeam) {
    const std::vector<int16_t> samples = RenderScore(Load(PIECE));
    uint64_t hash = 14695981039346656037u;
    for (const int16_t sample : samples)
        hash = (hash ^ static_cast<uint16_t>(sample)) * 1099511628211u;
    EXPECT_EQ(hash, 5426625637211374825u) << "on every compiler; changes with the synthesis";
    int peak = 0;
    for (const int16_t sample : samples)
        peak = std::max(peak, std::abs(int{sample}));
    EXPECT_LE(peak, 29204) << "-1 dB";
    EXPECT_GE(peak, 25000);

    // Without the drum nothing begins before the second beat, so what sounds there comes from the end.
    const std::vector<int16_t> tune = RenderScore(Load(With("\"beat\", \"tune\"", "\"tune\"")));
    const auto step = [&](size_t i) { return std::abs(tune[i] - tune[(i + tune.size() - 2) % tune.size()]); };
    int largest = 0;
    double tail = 0.0;
    for (size_t i = 2; i < 2000; ++i) {
        largest = std::max(largest, step(i));
        tail += std::abs(tune[i]);
    }
    EXPECT_GT(tail / 2000, 100.0);
    EXPECT_LE(std::max(step(0), step(1)), 2 * largest);
}

}  // namespace
