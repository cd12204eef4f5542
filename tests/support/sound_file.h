// Sound files for tests.
#pragma once

#include <cstdlib>
#include <sndfile.h>
#include <string>
#include <vector>

constexpr int WAV = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int FLAC = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
constexpr int OGG = SF_FORMAT_OGG | SF_FORMAT_VORBIS;

inline void WriteSound(const std::string& path, int format, int rate, int channels, const std::vector<short>& samples) {
    SF_INFO info{};
    info.format = format;
    info.samplerate = rate;
    info.channels = channels;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_write_short(file, samples.data(), static_cast<sf_count_t>(samples.size()));
    sf_close(file);
}

// A triangle wave of 441 Hz at 44100 Hz, the right channel half as loud as the left.
inline std::vector<short> Triangle(int frames, int channels) {
    std::vector<short> samples;
    for (int i = 0; i < frames; ++i)
        for (int channel = 0; channel < channels; ++channel)
            samples.push_back(static_cast<short>((std::abs(i % 100 - 50) - 25) * (channel == 0 ? 400 : 200)));
    return samples;
}
