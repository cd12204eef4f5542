// The sound of the machine with a window, on a device that writes what it plays to a file.
#include "backends/sdl/sound.h"
#include "support/sound_file.h"

#include <gtest/gtest.h>

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

TEST(SdlSound, GoesRoundWithoutAGap) {
    using namespace std::chrono_literals;
    const std::string folder = testing::TempDir();
    setenv("SDL_AUDIODRIVER", "disk", 1);
    setenv("SDL_DISKAUDIOFILE", (folder + "/played").c_str(), 1);
    setenv("SDL_DISKAUDIODELAY", "1", 1);
    std::vector<short> wave = Triangle(5000, 2);
    wave[0] = 77;  // marks where the wave begins
    WriteSound(folder + "/track.flac", FLAC, 44100, 2, wave);
    std::string problem;
    if (!OpenSound(problem)) GTEST_SKIP() << problem;
    PlayTrack(TrackReader::Open(folder + "/track.flac", problem));
    const auto size = [&] {
        std::error_code none;
        const uintmax_t bytes = std::filesystem::file_size(folder + "/played", none);
        return none ? 0 : bytes;
    };
    const auto limit = std::chrono::steady_clock::now() + 10min;  // against hanging only
    while (size() < 200000 && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(10ms);
    CloseSound();
    unsetenv("SDL_AUDIODRIVER");

    std::ifstream file(folder + "/played", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::vector<short> played(bytes.size() / sizeof(short));
    std::memcpy(played.data(), bytes.data(), played.size() * sizeof(short));
    const auto start = std::find(played.begin(), played.end(), 77);
    ASSERT_GE(played.end() - start, 25000) << "two rounds and a half";
    for (size_t i = 0; i < 25000; ++i)
        ASSERT_EQ(start[static_cast<std::ptrdiff_t>(i)], wave[i % wave.size()]) << "sample " << i;
}
