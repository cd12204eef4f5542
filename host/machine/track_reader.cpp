#include "machine/track_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sndfile.h>

namespace {

constexpr int64_t CHUNK = 1024;  // sample frames decoded at once
constexpr float FULL_SCALE = 32768.0f;

SNDFILE* File(void* file) {
    return static_cast<SNDFILE*>(file);
}

// The library knows two dozen formats more. Only what a disc may hold is let through to it.
bool LooksLikeATrack(const std::string& path) {
    std::array<char, 4> magic{};
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    const bool read = std::fread(magic.data(), magic.size(), 1, file) == 1;
    std::fclose(file);
    for (const char* known : {"RIFF", "fLaC", "OggS"})
        if (read && std::memcmp(magic.data(), known, magic.size()) == 0) return true;
    return false;
}

bool KnownCoding(int format) {
    const int coding = format & SF_FORMAT_SUBMASK;
    switch (format & SF_FORMAT_TYPEMASK) {
    case SF_FORMAT_OGG: return coding == SF_FORMAT_VORBIS;
    case SF_FORMAT_FLAC: return true;
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
        return coding == SF_FORMAT_PCM_U8 || coding == SF_FORMAT_PCM_16 || coding == SF_FORMAT_PCM_24 ||
               coding == SF_FORMAT_PCM_32 || coding == SF_FORMAT_FLOAT || coding == SF_FORMAT_DOUBLE;
    default: return false;
    }
}

std::string ProblemOf(const SF_INFO& info) {
    if (!KnownCoding(info.format)) return "neither plain WAV nor FLAC nor Ogg Vorbis";
    if (info.channels != 1 && info.channels != 2) return std::to_string(info.channels) + " channels, not one or two";
    if (info.samplerate < static_cast<int>(TRACK_RATE_MIN) || info.samplerate > static_cast<int>(TRACK_RATE_MAX))
        return std::to_string(info.samplerate) + " Hz, not " + std::to_string(TRACK_RATE_MIN) + " to " +
               std::to_string(TRACK_RATE_MAX);
    if (info.frames <= 0) return "no sound in it";
    if (info.frames / info.samplerate >= TRACK_MILLISECONDS_MAX / 1000) return "longer than 100 minutes";
    return {};
}

int16_t ToSample(float value) {
    const float scaled = value * FULL_SCALE;
    if (!(scaled > -32768.0f)) return -32768;  // also for a sample that is not a number
    return static_cast<int16_t>(std::lrintf(std::min(scaled, 32767.0f)));
}

}  // namespace

void TrackReader::Closer::operator()(void* file) const {
    sf_close(File(file));
}

std::unique_ptr<TrackReader> TrackReader::Open(const std::string& path, std::string& problem) {
    problem = "neither WAV nor FLAC nor Ogg Vorbis";
    if (!LooksLikeATrack(path)) return nullptr;
    std::unique_ptr<TrackReader> reader(new TrackReader);
    SF_INFO info{};
    reader->file_.reset(sf_open(path.c_str(), SFM_READ, &info));
    problem = reader->file_ ? ProblemOf(info) : std::string("damaged: ") + sf_strerror(nullptr);
    if (!problem.empty()) return nullptr;
    reader->path_ = path;
    reader->rate_ = static_cast<uint32_t>(info.samplerate);
    reader->channels_ = static_cast<size_t>(info.channels);
    reader->length_ = reader->end_ = info.frames;
    reader->decoded_.resize(static_cast<size_t>(CHUNK) * reader->channels_);
    return reader;
}

uint32_t TrackReader::Milliseconds() const {
    return static_cast<uint32_t>((length_ * 1000 + rate_ - 1) / rate_);
}

void TrackReader::SetSpan(uint32_t from, uint32_t to) {
    end_ = std::clamp<int64_t>(int64_t{to} * rate_ / 1000, 1, length_);
    if (to >= Milliseconds()) end_ = length_;
    first_ = std::min<int64_t>(int64_t{from} * rate_ / 1000, end_ - 1);
    if (!Rewind()) broken_ = true;
}

bool TrackReader::Rewind() {
    position_ = first_;
    return sf_seek(File(file_.get()), first_, SEEK_SET) == first_;
}

void TrackReader::Read(std::span<int16_t> samples) {
    while (!samples.empty() && !broken_) {
        const int64_t wanted = std::min({CHUNK, end_ - position_, static_cast<int64_t>(samples.size() / 2)});
        const int64_t got = sf_readf_float(File(file_.get()), decoded_.data(), wanted);
        for (size_t i = 0; i < static_cast<size_t>(std::max<int64_t>(got, 0)); ++i) {
            samples[2 * i] = ToSample(decoded_[i * channels_]);
            samples[2 * i + 1] = ToSample(decoded_[i * channels_ + channels_ - 1]);
        }
        if (got > 0) samples = samples.subspan(static_cast<size_t>(got) * 2);
        position_ += wanted;
        if (got != wanted || (position_ == end_ && !Rewind())) broken_ = true;
    }
    std::fill(samples.begin(), samples.end(), int16_t{0});
}
