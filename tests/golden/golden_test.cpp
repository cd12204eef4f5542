// Frames of the two frozen test levels: pixel for pixel in software, and as the accelerator's boards draw them. To
// renew them after a wanted change, and look at the difference as pictures before committing:
//
//     TARNWICK_RENEW_GOLDENS=1 build/tests/test_golden && git diff --stat tests/golden

#include "formats/image.h"
#include "program/run_program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace fs = std::filesystem;

namespace {

const fs::path GOLDENS = SOURCE_FOLDER "/tests/golden";

struct GoldenLevel {
    const char* name;  // name of the script, with which its pictures' names begin, too
    int number;
};
void PrintTo(const GoldenLevel& level, std::ostream* out) {  // makes the names that ctest gives to the tests
    *out << level.name;
}

// How many pixels have a channel that differs by more than `steps`; SIZE_MAX: the sizes differ.
size_t DifferingPixels(const Image& a, const Image& b, int steps) {
    if (a.pixels.empty() || a.width != b.width || a.height != b.height) return SIZE_MAX;
    size_t count = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        const Rgba &p = a.pixels[i], &q = b.pixels[i];
        count += std::abs(p.r - q.r) > steps || std::abs(p.g - q.g) > steps || std::abs(p.b - q.b) > steps;
    }
    return count;
}

// The picture at half the size: each pixel is the mean of two by two.
Image Halved(const Image& picture) {
    Image half(picture.width / 2, picture.height / 2);
    for (int y = 0; y < half.height; ++y)
        for (int x = 0; x < half.width; ++x) {
            const auto mean = [&](uint8_t Rgba::*channel) {
                int sum = 2;
                for (int i = 0; i < 4; ++i)
                    sum += picture.At(2 * x + i % 2, 2 * y + i / 2).*channel;
                return static_cast<uint8_t>(sum / 4);
            };
            half.At(x, y) = {mean(&Rgba::r), mean(&Rgba::g), mean(&Rgba::b), 255};
        }
    return half;
}

class Golden : public testing::TestWithParam<GoldenLevel> {
protected:
    // Plays the script and returns its pictures by name; none: this machine lacks the renderer.
    std::map<std::string, Image> Play(const std::string& renderer, const std::string& program = "tarnwick") {
        const auto& [name, number] = GetParam();
        const ProgramRun run;
        result = run.Run("--data " SOURCE_FOLDER "/tests/levels/data --level " + std::to_string(number) +
                             " --script " SOURCE_FOLDER "/tests/golden/" + name + ".txt --renderer " + renderer,
                         program);
        std::map<std::string, Image> pictures;
        for (const fs::directory_entry& entry : fs::directory_iterator(run.Folder()))
            if (result.status == 0 && entry.path().filename().string().starts_with(name))
                pictures[entry.path().stem()] = ReadPng(entry.path());
        return pictures;
    }

    static bool Renews() { return std::getenv("TARNWICK_RENEW_GOLDENS") != nullptr; }

    ProgramResult result;
};
INSTANTIATE_TEST_SUITE_P(Levels, Golden, testing::Values(GoldenLevel{"alpha", 1}, GoldenLevel{"beta", 2}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Golden, FramesAreAsRecorded) {
    const std::map<std::string, Image> pictures = Play("software");
    ASSERT_GE(pictures.size(), 4u) << result.errors;
    for (const auto& [name, picture] : pictures) {
        const fs::path golden = GOLDENS / (name + ".png");
        if (Renews()) WritePng(golden, picture);
        EXPECT_EQ(DifferingPixels(ReadPng(golden), picture, 0), 0u) << name;
    }
}

TEST_P(Golden, FramesAreFilledPixelByPixel) {
    Play("software", "tests/fill_checker");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("up to frame 200"), std::string::npos) << result.output;
}

TEST_P(Golden, FramesOfTheCpuBoardAreAsRecordedAndOfTheGpuBoardTheSame) {
    const std::map<std::string, Image> cpu = Play("accelerator --board cpu");
    ASSERT_GE(cpu.size(), 4u) << result.errors;
    for (const auto& [name, picture] : cpu) {
        const fs::path golden = GOLDENS / (name + "_accelerator.png");
        if (!fs::exists(golden)) continue;  // a board needs pictures of some frames only
        if (Renews()) WritePng(golden, Halved(picture));
        EXPECT_EQ(DifferingPixels(Halved(picture), ReadPng(golden), 1), 0u) << name;
    }
    const std::map<std::string, Image> gpu = Play("accelerator --board gpu");
    if (result.errors.find("no OpenGL") != std::string::npos) GTEST_SKIP() << result.errors;
    ASSERT_EQ(gpu.size(), cpu.size()) << result.errors;
    for (const auto& [name, picture] : gpu)
        EXPECT_LT(DifferingPixels(picture, cpu.at(name), 2), 100u) << name << ": of 640 x 480";
}

}  // namespace
