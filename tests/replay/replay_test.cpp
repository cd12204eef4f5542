// What the game does, compared with recordings of it, which scripts/renew_recordings.sh makes.
#include "program/run_program.h"
#include "replay/play/recorded_play.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

namespace {

const std::string FOLDER = SOURCE_FOLDER "/tests/replay/";
const std::string DATA = "--data '" SOURCE_FOLDER "/tests/levels/data' ";

std::vector<std::string> Recordings() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(FOLDER))
        if (entry.path().extension() == ".rec") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string FileOf(const std::string& name) {
    return FOLDER + name + ".rec";
}

class Recorded : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Play, Recorded, testing::ValuesIn(Recordings()), [](const auto& row) { return row.param; });

TEST_P(Recorded, IsPlayedTheSame) {
    const ProgramResult result = ProgramRun().Run(DATA + "--replay " + FileOf(GetParam()));
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.ends_with(" frames, all as recorded\n")) << result.errors;
}

// A replay answers the game with what was recorded and draws in the usual size: no setting may reach it.
TEST_P(Recorded, IsPlayedTheSameWithEverySettingOn) {
#ifdef TARNWICK_SANITIZED
    GTEST_SKIP() << "thousands of larger pictures take minutes here";
#endif
    const ProgramRun program;
    program.Write("on.txt",
                  "smooth = on\nsteady_lamps = on\nsoftware_size = 640x480\nscaling = sharp\nbrightness = 150\n"
                  "mouse_speed = 200\nmouse_inverted = on\nboard_scale = 2\nkey_run = W\n");
    const ProgramResult result = program.Run(DATA + "--settings on.txt --replay " + FileOf(GetParam()));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.errors.ends_with(" frames, all as recorded\n")) << result.errors;
}

TEST(Recordings, ReachEveryStateAndEveryWayIntoIt) {
    Coverage coverage = WantedCoverage();
    for (const std::string& name : Recordings())
        AddCoverage(coverage, ReadPlay(FileOf(name)));
    for (const auto& [thing, count] : coverage)
        EXPECT_GT(count, 0) << thing << " is not reached by any recording";
}

class Replay : public testing::Test {
protected:
    // Writes changed.rec: the recording with its sections changed by `change`, which gets their numbers from 1.
    void Rewrite(const std::string& name, const std::function<void(uint32_t, Section&)>& change) const {
        std::ifstream stream(FileOf(name), std::ios::binary);
        const std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(stream), {});
        RecordingReader reader;
        RecordingHeader header{};
        std::string error;
        reader.Open(bytes, header, error);
        RecordingWriter writer(header);
        Section section;
        for (uint32_t number = 1; !section.end && reader.Next(section, error); ++number) {
            change(number, section);
            writer.Add(section);
        }
        program.Write("changed.rec", {writer.Bytes().begin(), writer.Bytes().end()});
    }

    ProgramResult PlayChanged(const std::string& options) const {
        return program.Run(DATA + "--replay changed.rec " + options);
    }

    ProgramRun program;
};

TEST_F(Replay, NamesTheFirstFrameAndFieldThatDiffer) {
    const size_t heading = 5, lights = 12;
    const struct {
        std::function<void(uint32_t, Section&)> change;
        const char* says;
    } rows[] = {
        {[&](uint32_t number, Section& section) {
             if (number == 45) section.frame.fields[heading] = {0x40200000};
             if (number == 50) section.frame.fields[0] = {9};
         },
         "game frame 45 differs from the recorded one: heading: recorded 2.5, now "},
        {[&](uint32_t number, Section& section) {
             if (number > 70 && number < 130) ++section.frame.digest;
             if (number == 97) section.frame.fields[lights] = {0};
         },
         "game frame 71 differs from the recorded one: digest: "},
        {[](uint32_t number, Section& section) {
             if (number == 33) ++*section.frame.pixels;
         },
         "game frame 33 differs from the recorded one: pixels: "},
        {[](uint32_t number, Section& section) {
             if (number == 20) section.answers[ANSWER_CLOCK].push_back({5, {0}});
         },
         "game frame 20 differs from the recorded one: clock readings: recorded "},
        {[](uint32_t number, Section& section) {
             if (number == 300) section.end = RunEnd::Ordinary;
         },
         "299 frames, all as recorded"},
        {[](uint32_t number, Section& section) {
             if (number == 302) section.answers[ANSWER_KEYS] = {{1, {DEVICE_READ, 0xDB}}};
         },
         "the game ended after 302 of 310 recorded frames"},
    };
    for (const auto& row : rows) {
        Rewrite("keys", row.change);
        const bool isPicture = std::string(row.says).find("pixels") != std::string::npos;
        const ProgramResult result = PlayChanged(isPicture ? "" : "--from 1000000");
        EXPECT_NE(result.errors.find(row.says), std::string::npos) << result.errors;
        EXPECT_EQ(result.status, std::string(row.says).ends_with("as recorded") ? 0 : 1) << row.says;
    }
    Rewrite("keys", rows[1].change);
    EXPECT_NE(PlayChanged("--from 1000000").errors.find("is of frame 97, lights: recorded [0], now ["),
              std::string::npos);
}

TEST_F(Replay, WhatIsNotDrawnChangesNothingThatFollows) {
    for (const char* name : {"keys", "again"}) {
        std::vector<std::string> frames[2];
        for (const uint32_t from : {1u, 50u}) {
            program.Run(DATA + "--replay " + FileOf(name) + " --trace t.jsonl --from " + std::to_string(from));
            std::istringstream trace(program.Read("t.jsonl"));
            for (std::string line; std::getline(trace, line);)
                frames[from > 1].push_back(line);
        }
        ASSERT_EQ(frames[0].size(), frames[1].size());
        for (size_t i = 49; i < frames[0].size(); ++i)
            ASSERT_EQ(frames[0][i], frames[1][i]) << name;
        EXPECT_TRUE(frames[1][40].ends_with("\"pixels\":null}"));
    }
}

TEST_F(Replay, OfAFailureFailsAgainAndSaysWhereTheRecordingIs) {
    const ProgramResult failed = program.Run("--data empty --level 3 --log a.log");
    EXPECT_NE(failed.errors.find("The recording of this run, for --replay, is a.rec, the log is a.log"),
              std::string::npos)
        << failed.errors;
    EXPECT_NE(program.Run("--data empty --replay a.rec").errors.find("No .BSP file found"), std::string::npos);
}

TEST_F(Replay, RefusesWhatItCannotPlay) {
    program.Write("cut.rec", program.Read(FileOf("keys")).substr(0, 3000));
    const std::string keys = "--replay " + FileOf("keys"), hardware = "--replay " + FileOf("keys_accelerator");
    const struct {
        std::string arguments;
        const char* says;
        int status;
    } rows[] = {
        {"--data empty " + keys, "it was recorded with another FrontEnd\\Title.Bmp; replay it with the data", 1},
        {DATA + "--replay cut.rec", "cut.rec: the recording is damaged at byte 3000, in game frame ", 2},
        {"--replay empty", "the recording empty cannot be read, or is empty", 2},
        {keys + " --level 3", "--level does not go with a replay", 2},
        {keys + " --record new.rec", "--record does not go with a replay", 2},
        {hardware + " --board none", "was recorded with an accelerator", 2},
        {DATA + "--record none/x.rec", "cannot write the recording none/x.rec: ", 2},
    };
    for (const auto& row : rows) {
        const ProgramResult result = program.Run(row.arguments);
        EXPECT_EQ(result.status, row.status) << row.arguments;
        EXPECT_NE(result.errors.find(row.says), std::string::npos) << result.errors;
    }
}

TEST_F(Replay, BenchmarkMeasuresEveryStage) {
    const ProgramResult result = program.Run(DATA + "--benchmark " + FileOf("again"));
    EXPECT_EQ(result.status, 0);
    for (const char* part :
         {"100 frames, ", " frames/s", "median ms", "character", "sky", "lights", "world", "present"})
        EXPECT_NE(result.errors.find(part), std::string::npos) << part << " is missing in " << result.errors;
}

}  // namespace
