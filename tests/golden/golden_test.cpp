// Frames of the two frozen test levels, pixel for pixel. To renew them after a wanted change, and look at the
// difference as pictures before committing:
//
//     TARNWICK_RENEW_GOLDENS=1 build/tests/test_golden && git diff --stat tests/golden

#include "program/run_program.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path GOLDENS = SOURCE_FOLDER "/tests/golden";

struct Pixels {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb;
};

Pixels ReadPng(const fs::path& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Pixels pixels;
    if (!png_image_begin_read_from_file(&image, file.c_str())) return pixels;
    image.format = PNG_FORMAT_RGB;
    pixels = {image.width, image.height, std::vector<uint8_t>(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, pixels.rgb.data(), 0, nullptr)) return {};
    return pixels;
}

size_t DifferingPixels(const Pixels& a, const Pixels& b) {
    if (a.rgb.empty() || a.width != b.width || a.height != b.height) return SIZE_MAX;
    size_t count = 0;
    for (size_t i = 0; i < a.rgb.size(); i += 3) {
        count += a.rgb[i] != b.rgb[i] || a.rgb[i + 1] != b.rgb[i + 1] || a.rgb[i + 2] != b.rgb[i + 2];
    }
    return count;
}

struct GoldenLevel {
    const char* name;  // of the script, and before the frame's number in its pictures' names
    int number;
};

class Golden : public testing::TestWithParam<GoldenLevel> {};
INSTANTIATE_TEST_SUITE_P(Levels, Golden, testing::Values(GoldenLevel{"alpha", 1}, GoldenLevel{"beta", 2}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Golden, FramesAreAsRecorded) {
    const GoldenLevel& level = GetParam();
    const ProgramRun program;
    const ProgramResult result =
        program.Run("--data " SOURCE_FOLDER "/tests/levels/data --renderer software --level " +
                    std::to_string(level.number) + " --script " SOURCE_FOLDER "/tests/golden/" + level.name + ".txt");
    ASSERT_EQ(result.status, 0) << result.errors;

    size_t compared = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(program.Folder())) {
        const std::string name = entry.path().filename();
        if (!name.starts_with(level.name) || !name.ends_with(".png")) continue;
        const fs::path golden = GOLDENS / name;
        if (std::getenv("TARNWICK_RENEW_GOLDENS")) {
            fs::copy_file(entry.path(), golden, fs::copy_options::overwrite_existing);
        }
        EXPECT_EQ(DifferingPixels(ReadPng(golden), ReadPng(entry.path())), 0u)
            << "now " << entry.path() << ", recorded " << golden;
        compared += 1;
    }
    EXPECT_GE(compared, 4u);
}

}  // namespace
