// A recording: everything that entered the game in one run, in the order in which the game asked, and what each of its
// frames came to. docs/formats.md has the bytes.
//
// A recording is a row of sections. A section holds the answers that the game got in one game frame (the first one
// those of the front end before it, too), and the frame's numbers. The last section has no frame, and says how the run
// ended.
#pragma once

#include "session/frame_fields.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

constexpr uint32_t FULL_FRAME_EVERY = 32;  // frames 1, 33, 65 and so on hold the slow fields, too

// What the game asks for. Each kind has a row of answers of its own.
enum AnswerKind {
    ANSWER_CLOCK,    // a step of the clock, in ms
    ANSWER_KEYS,     // a DeviceResult, and the scan codes of the keys that changed, in any order
    ANSWER_MOUSE,    // a DeviceResult, the counts x, y and wheel, the buttons: bit n is button n
    ANSWER_MESSAGE,  // message, wParam, lParam; all 0: there was none
    ANSWER_FILE,     // the low half of a digest over the file's path and content
    ANSWER_KINDS
};
extern const char* const ANSWER_NAMES[ANSWER_KINDS];  // what the game did to get one: "clock readings"

enum DeviceResult : int64_t { DEVICE_READ, DEVICE_LOST, DEVICE_NOT_ACQUIRED };

struct AnswerRun {
    uint32_t times;  // in a row, 1 and more
    std::vector<int64_t> words;
    bool operator==(const AnswerRun&) const = default;
};
using Answers = std::vector<AnswerRun>;

struct RecordedFrame {
    FrameFields fields;  // the slow ones are empty but in full frames
    uint32_t digest;     // low halves of the trace's
    std::optional<uint32_t> pixels;
};

enum class RunEnd : uint8_t { Ordinary, Failure };

struct Section {
    Answers answers[ANSWER_KINDS];
    RecordedFrame frame;
    std::optional<RunEnd> end;  // only in the last section, which has no frame
};

struct RecordingHeader {
    bool hasBoard;  // the game found an accelerator
};

bool IsFullFrame(uint32_t frame);  // frame: from 1

// What the coding of a section depends on: the sections before it.
struct SectionContext {
    uint32_t frame = 1;  // the game frame of the section
    Answers answers[ANSWER_KINDS];
    FrameFields last, beforeLast;  // empty: not known

    void Follow(const Section& section);
    uint32_t Predict(size_t field,
                     size_t index) const;  // the expected bits, coded so that they count up with the number
};

class RecordingWriter {
public:
    explicit RecordingWriter(const RecordingHeader& header);
    void Add(const Section& section);
    const std::vector<uint8_t>& Bytes() const { return bytes_; }

private:
    void AddNumber(uint64_t value);
    void AddSigned(int64_t value);
    void AddFixed(uint64_t value, int bytes);
    void AddAnswers(AnswerKind kind, const Answers& answers);
    void AddFrame(const RecordedFrame& frame);
    void AddCheck();

    std::vector<uint8_t> bytes_;
    size_t checked_ = 0;  // bytes that are already under a checksum
    SectionContext context_;
};

// Reads section after section. The bytes must stay as they are meanwhile.
class RecordingReader {
public:
    // False: no recording, or one of another version; `error` says so.
    bool Open(std::span<const uint8_t> bytes, RecordingHeader& header, std::string& error);
    // False: `error` says what is wrong at which byte and frame, and what to do. Not called after the last section.
    bool Next(Section& section, std::string& error);

private:
    uint64_t Fixed(int bytes);
    uint64_t Number(uint64_t most);
    int64_t Signed(int64_t least, int64_t most);
    void ReadAnswers(AnswerKind kind, Answers& answers);
    void ReadFrame(RecordedFrame& frame, bool hasPixels);
    void ReadCheck();
    void Fail(const char* problem);

    std::span<const uint8_t> bytes_;
    size_t place_ = 0;
    size_t checked_ = 0;
    const char* problem_ = nullptr;
    SectionContext context_;
};

// Reads all of it once. `frames`: how many game frames it has.
bool CheckRecording(std::span<const uint8_t> bytes, RecordingHeader& header, uint32_t& frames, std::string& error);
