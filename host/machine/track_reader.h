// A sound file as a track of the disc: WAV, FLAC or Ogg Vorbis, mono or stereo, 8000 to 192000 Hz, at most 100 minutes.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

constexpr uint32_t TRACK_RATE_MIN = 8000, TRACK_RATE_MAX = 192000;  // Hz
constexpr uint32_t TRACK_MILLISECONDS_MAX = 100 * 60 * 1000;

class TrackReader {
public:
    // Null: not a track that can be played; `problem` says what it is instead, or what is wrong with it.
    static std::unique_ptr<TrackReader> Open(const std::string& path, std::string& problem);

    uint32_t Rate() const { return rate_; }    // samples a second
    uint32_t Milliseconds() const;             // length of the whole file, rounded up
    void SetSpan(uint32_t from, uint32_t to);  // milliseconds; Read begins at `from`, and again there at `to`
    double SpanStart() const { return Seconds(first_); }
    double SpanEnd() const { return Seconds(end_); }
    void Read(std::span<int16_t> samples);  // left, right, left ...; silence once the file broke off
    const std::string& Path() const { return path_; }
    bool Broken() const { return broken_.load(); }  // may be asked from another thread than the one that reads

private:
    struct Closer {
        void operator()(void* file) const;
    };
    TrackReader() = default;
    bool Rewind();
    double Seconds(int64_t frames) const { return static_cast<double>(frames) / rate_; }

    std::unique_ptr<void, Closer> file_;
    std::string path_;
    uint32_t rate_ = 0;
    size_t channels_ = 0;
    int64_t length_ = 0;           // length of the file; positions and lengths count sample frames
    int64_t first_ = 0, end_ = 0;  // the span
    int64_t position_ = 0;
    std::vector<float> decoded_;
    std::atomic<bool> broken_ = false;
};
