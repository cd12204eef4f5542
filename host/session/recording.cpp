#include "session/recording.h"

#include "machine/digest.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char MAGIC[] = {'t', 'w', 'r', 'e', 'c', '\r', '\n', '\x1A'};
constexpr uint16_t VERSION = 1;
constexpr size_t HEADER_BYTES = sizeof MAGIC + 3;

// The first byte of a section has a bit for each kind of answers that differs from the section before, and these bits.
constexpr uint8_t SECTION_HAS_PIXELS = 1 << 5;
constexpr uint8_t SECTION_RESERVED = 1 << 6;
constexpr uint8_t SECTION_IS_LAST = 1 << 7;

// The numbers of one answer. Those of the keyboard are as many as keys changed.
struct WordRange {
    int64_t least, most;
};
constexpr WordRange COUNTS = {INT32_MIN, INT32_MAX};
constexpr WordRange ANY_WORD = {INT64_MIN, INT64_MAX};
constexpr WordRange RESULTS = {DEVICE_READ, DEVICE_NOT_ACQUIRED};
struct AnswerFormat {
    size_t words;
    WordRange ranges[5];
};
constexpr AnswerFormat FORMATS[ANSWER_KINDS] = {
    {1, {{0, UINT32_MAX}}},
    {1, {RESULTS}},
    {5, {RESULTS, COUNTS, COUNTS, COUNTS, {0, 15}}},
    {3, {{0, UINT32_MAX}, ANY_WORD, ANY_WORD}},
    {1, {{0, UINT32_MAX}}},
};
constexpr uint64_t KEYS_MAX = 256;

uint64_t ZigZag(int64_t value) {
    return static_cast<uint64_t>(value) << 1 ^ static_cast<uint64_t>(value >> 63);
}

int64_t UnZigZag(uint64_t value) {
    return static_cast<int64_t>(value >> 1 ^ (0 - (value & 1)));
}

// A float's bits, changed so that they count up with the number: a small step of the number is a small step of its
// bits.
uint32_t ToOrder(size_t field, uint32_t word) {
    if (FRAME_FIELDS[field].kind != FieldKind::Real) return word;
    return word >> 31 ? ~word : word | 0x80000000;
}

uint32_t FromOrder(size_t field, uint32_t word) {
    if (FRAME_FIELDS[field].kind != FieldKind::Real) return word;
    return word >> 31 ? word & 0x7FFFFFFF : ~word;
}

bool IsHeld(size_t field, uint32_t frame) {
    return !FRAME_FIELDS[field].isSlow || IsFullFrame(frame);
}

uint32_t CheckOf(std::span<const uint8_t> bytes) {
    Digest digest;
    digest.Add(bytes.data(), bytes.size());
    return static_cast<uint32_t>(digest.Value());
}

}  // namespace

const char* const ANSWER_NAMES[ANSWER_KINDS] = {"clock readings", "keyboard polls", "mouse polls", "message polls",
                                                "files opened"};

bool IsFullFrame(uint32_t frame) {
    return frame % FULL_FRAME_EVERY == 1;
}

void SectionContext::Follow(const Section& section) {
    std::copy(std::begin(section.answers), std::end(section.answers), std::begin(answers));
    beforeLast = std::move(last);
    last = section.frame.fields;
    ++frame;
    if (IsFullFrame(frame)) last = beforeLast = {};
}

uint32_t SectionContext::Predict(size_t field, size_t index) const {
    const auto known = [&](const FrameFields& fields) {
        return index < fields[field].size() ? ToOrder(field, fields[field][index]) : 0;
    };
    const uint32_t latest = known(last);
    return index < beforeLast[field].size() ? 2 * latest - known(beforeLast) : latest;
}

RecordingWriter::RecordingWriter(const RecordingHeader& header) {
    bytes_.assign(std::begin(MAGIC), std::end(MAGIC));
    AddFixed(VERSION, 2);
    AddFixed(header.hasBoard, 1);
}

void RecordingWriter::AddNumber(uint64_t value) {
    for (; value >= 0x80; value >>= 7)
        bytes_.push_back(static_cast<uint8_t>(value | 0x80));
    bytes_.push_back(static_cast<uint8_t>(value));
}

void RecordingWriter::AddSigned(int64_t value) {
    AddNumber(ZigZag(value));
}

void RecordingWriter::AddFixed(uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        bytes_.push_back(static_cast<uint8_t>(value >> 8 * i));
}

void RecordingWriter::AddAnswers(AnswerKind kind, const Answers& answers) {
    AddNumber(answers.size());
    for (const AnswerRun& run : answers) {
        AddNumber(run.times);
        if (kind == ANSWER_KEYS) AddNumber(run.words.size() - FORMATS[kind].words);
        for (const int64_t word : run.words)
            AddSigned(word);
    }
}

void RecordingWriter::AddFrame(const RecordedFrame& frame) {
    std::vector<uint8_t> before;
    before.swap(bytes_);
    uint16_t changed = 0;
    for (size_t field = 0; field < FIELD_COUNT; ++field) {
        if (!IsHeld(field, context_.frame)) continue;
        const FieldWords& words = frame.fields[field];
        const size_t start = bytes_.size();
        bool differs = words.size() != context_.last[field].size();
        if (FRAME_FIELDS[field].count == 0) AddNumber(words.size());
        for (size_t i = 0; i < words.size(); ++i) {
            const auto step = static_cast<int32_t>(ToOrder(field, words[i]) - context_.Predict(field, i));
            AddSigned(step);
            differs = differs || step != 0;
        }
        if (differs)
            changed |= static_cast<uint16_t>(1 << field);
        else
            bytes_.resize(start);
    }
    before.swap(bytes_);
    AddFixed(changed, 2);
    bytes_.insert(bytes_.end(), before.begin(), before.end());
    AddFixed(frame.digest, 4);
    if (frame.pixels) AddFixed(*frame.pixels, 4);
}

void RecordingWriter::AddCheck() {
    AddFixed(CheckOf(std::span(bytes_).subspan(checked_)), 4);
    checked_ = bytes_.size();
}

void RecordingWriter::Add(const Section& section) {
    uint8_t first = 0;
    for (int kind = 0; kind < ANSWER_KINDS; ++kind)
        if (section.answers[kind] != context_.answers[kind]) first |= static_cast<uint8_t>(1 << kind);
    if (section.frame.pixels) first |= SECTION_HAS_PIXELS;
    if (section.end) first |= SECTION_IS_LAST;
    bytes_.push_back(first);
    for (int kind = 0; kind < ANSWER_KINDS; ++kind)
        if (first & 1 << kind) AddAnswers(static_cast<AnswerKind>(kind), section.answers[kind]);
    if (section.end)
        AddFixed(static_cast<uint8_t>(*section.end), 1);
    else
        AddFrame(section.frame);
    if (section.end || IsFullFrame(context_.frame)) AddCheck();
    context_.Follow(section);
}

void RecordingReader::Fail(const char* problem) {
    if (!problem_) problem_ = problem;
}

uint64_t RecordingReader::Fixed(int bytes) {
    uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) {
        if (place_ == bytes_.size()) Fail("it ends too early");
        if (problem_) return 0;
        value |= uint64_t{bytes_[place_++]} << 8 * i;
    }
    return value;
}

uint64_t RecordingReader::Number(uint64_t most) {
    uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 7) {
        const uint64_t byte = Fixed(1);
        value |= (byte & 0x7F) << shift;
        if (byte & 0x80) continue;
        if (value > most) Fail("a number is out of range");
        return problem_ ? 0 : value;
    }
    Fail("a number has too many bytes");
    return 0;
}

int64_t RecordingReader::Signed(int64_t least, int64_t most) {
    const int64_t value = UnZigZag(Number(UINT64_MAX));
    if (value >= least && value <= most) return value;
    Fail("a number is out of range");
    return least;
}

void RecordingReader::ReadAnswers(AnswerKind kind, Answers& answers) {
    const AnswerFormat& format = FORMATS[kind];
    answers.clear();
    for (uint64_t left = Number(bytes_.size()); left > 0 && !problem_; --left) {
        AnswerRun& run = answers.emplace_back();
        run.times = static_cast<uint32_t>(Number(UINT32_MAX));
        if (run.times == 0) Fail("a number is out of range");
        uint64_t keys = kind == ANSWER_KEYS ? Number(KEYS_MAX) : 0;
        for (size_t i = 0; i < format.words; ++i)
            run.words.push_back(Signed(format.ranges[i].least, format.ranges[i].most));
        for (; keys > 0 && !problem_; --keys)
            run.words.push_back(Signed(0, KEYS_MAX - 1));
    }
}

void RecordingReader::ReadFrame(RecordedFrame& frame, bool hasPixels) {
    const auto changed = static_cast<uint32_t>(Fixed(2));
    if (changed >> FIELD_COUNT) Fail("a field is unknown");
    for (size_t field = 0; field < FIELD_COUNT; ++field) {
        FieldWords& words = frame.fields[field];
        words.clear();
        const bool differs = changed >> field & 1;
        if (!IsHeld(field, context_.frame)) {
            if (differs) Fail("a field is not held in this frame");
            continue;
        }
        uint64_t count = context_.last[field].size();
        if (differs) count = FRAME_FIELDS[field].count ? FRAME_FIELDS[field].count : Number(bytes_.size() - place_);
        if (FRAME_FIELDS[field].count && count != FRAME_FIELDS[field].count) Fail("a field is missing");
        for (size_t i = 0; i < count && !problem_; ++i) {
            const uint32_t step = differs ? static_cast<uint32_t>(Signed(INT32_MIN, INT32_MAX)) : 0;
            words.push_back(FromOrder(field, context_.Predict(field, i) + step));
        }
    }
    frame.digest = static_cast<uint32_t>(Fixed(4));
    frame.pixels.reset();
    if (hasPixels) frame.pixels = static_cast<uint32_t>(Fixed(4));
}

void RecordingReader::ReadCheck() {
    const uint32_t check = CheckOf(bytes_.subspan(checked_, place_ - checked_));
    if (Fixed(4) != check) Fail("one of the bytes since the checksum before is not as it was written");
    checked_ = place_;
}

bool RecordingReader::Open(std::span<const uint8_t> bytes, RecordingHeader& header, std::string& error) {
    *this = {};
    bytes_ = bytes;
    if (bytes.size() < HEADER_BYTES || std::memcmp(bytes.data(), MAGIC, sizeof MAGIC) != 0) {
        error = "this is no recording; --record makes one";
        return false;
    }
    place_ = sizeof MAGIC;
    const auto version = static_cast<unsigned>(Fixed(2));
    header.hasBoard = Fixed(1) != 0;
    if (version == VERSION) return true;
    error = "this is a recording of version " + std::to_string(version) + ", and the program reads version " +
            std::to_string(VERSION) + "; record it again";
    return false;
}

bool RecordingReader::Next(Section& section, std::string& error) {
    const auto first = static_cast<uint8_t>(Fixed(1));
    if (first & SECTION_RESERVED) Fail("a section begins with an unknown bit");
    for (int kind = 0; kind < ANSWER_KINDS; ++kind) {
        if (first & 1 << kind)
            ReadAnswers(static_cast<AnswerKind>(kind), section.answers[kind]);
        else
            section.answers[kind] = context_.answers[kind];
    }
    section.end.reset();
    if (first & SECTION_IS_LAST) {
        const uint64_t end = Fixed(1);
        if (end > static_cast<uint64_t>(RunEnd::Failure)) Fail("the end is of an unknown kind");
        section.end = static_cast<RunEnd>(end);
    } else {
        ReadFrame(section.frame, first & SECTION_HAS_PIXELS);
    }
    if (section.end || IsFullFrame(context_.frame)) ReadCheck();
    if (section.end && !problem_ && place_ != bytes_.size()) Fail("bytes follow its end");
    if (problem_) {
        error = "the recording is damaged at byte " + std::to_string(place_) + ", in game frame " +
                std::to_string(context_.frame) + ": " + problem_ + "; copy it again, or record it again";
        return false;
    }
    context_.Follow(section);
    return true;
}

bool CheckRecording(std::span<const uint8_t> bytes, RecordingHeader& header, uint32_t& frames, std::string& error) {
    RecordingReader reader;
    if (!reader.Open(bytes, header, error)) return false;
    Section section;
    for (frames = 0; reader.Next(section, error); ++frames)
        if (section.end) return true;
    return false;
}
