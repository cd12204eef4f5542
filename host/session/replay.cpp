#include "session/replay.h"

#include "input/devices.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "session/ending.h"
#include "session/progress.h"
#include "session/recorder.h"
#include "session/recording.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr uint32_t BEYOND_MAX = 100000;  // answers that nobody recorded: the game waits for one that does not come
constexpr int32_t PAUSE_MAX = 1000;      // ms, of a replay in a window

std::string file;
std::vector<uint8_t> bytes;
uint32_t framesRecorded = 0;
RecordingReader reader;
Section section;
bool isPlaying = false;
bool isPaced = false;
uint32_t drawFrom = 0;

// Where the game is in a row of answers.
struct Place {
    size_t run;
    uint32_t taken;  // answers already taken from that run of equal ones
};
Place places[ANSWER_KINDS];
uint32_t asked[ANSWER_KINDS];
uint32_t beyond = 0;

uint32_t clockNow = 0;
uint8_t keysDown[KEY_COUNT];
DIMOUSESTATE mouse{};
uint32_t paceStart = 0;  // reading of the machine's clock when the recorded clock was 0
bool hasPace = false;

struct Difference {
    uint32_t frame;
    uint32_t recorded, now;  // digests
};
std::optional<Difference> unexplained;  // the digest differs, and no field that every frame has

[[noreturn]] void Differ(const std::string& what) {
    PrintError("%s: %s", file.c_str(), what.c_str());
    isPlaying = false;
    EndRun(EXIT_FAILURE);
}

std::string InFrame(uint32_t frame) {
    return "game frame " + std::to_string(frame) + " differs from the recorded one: ";
}

// The recorded run failed here. The failure did not happen again, or the game goes on beyond the recorded answers.
[[noreturn]] void EndAsRecorded(uint32_t frame) {
    std::fprintf(stderr, "the recording ends here, in game frame %u: the recorded run failed at this point\n", frame);
    isPlaying = false;
    EndRun(EXIT_SUCCESS);
}

// Null: the game asks more often than it did.
const AnswerRun* TakeAnswer(AnswerKind kind) {
    const Answers& answers = section.answers[kind];
    Place& place = places[kind];
    ++asked[kind];
    if (place.run < answers.size() && place.taken == answers[place.run].times) place = {place.run + 1, 0};
    if (place.run < answers.size()) {
        ++place.taken;
        return &answers[place.run];
    }
    const uint32_t frame = Progress.framesPlayed + 1;
    if (section.end) EndAsRecorded(frame);
    if (++beyond > BEYOND_MAX) Differ(InFrame(frame) + "the game waits for an answer that was not recorded");
    return nullptr;
}

uint32_t CountOf(const Answers& answers) {
    uint32_t count = 0;
    for (const AnswerRun& run : answers)
        count += run.times;
    return count;
}

void NextSection() {
    std::string error;
    if (!reader.Next(section, error)) Differ(error);
    for (Place& place : places)
        place = {};
    for (uint32_t& count : asked)
        count = 0;
    beyond = 0;
}

std::string Values(const std::string& recorded, const std::string& now) {
    return "recorded " + recorded + ", now " + now;
}

std::string DigestValues(uint32_t recorded, uint32_t now) {
    char text[64];
    std::snprintf(text, sizeof text, "recorded %08x, now %08x", recorded, now);
    return text;
}

// The first field that differs; nothing when all the fields that this frame holds are the same.
std::optional<std::string> DifferentField(uint32_t frame, const FrameFields& now) {
    const FrameFields& recorded = section.frame.fields;
    for (size_t field = 0; field < FIELD_COUNT; ++field) {
        const FieldInfo& info = FRAME_FIELDS[field];
        if (info.isSlow && !IsFullFrame(frame)) continue;
        if (recorded[field] != now[field])
            return info.name + (": " + Values(FieldText(field, recorded[field]), FieldText(field, now[field])));
    }
    return {};
}

std::string Unexplained(const Difference& difference) {
    return InFrame(difference.frame) + "digest: " + DigestValues(difference.recorded, difference.now);
}

void CompareFields(uint32_t frame, const FrameFields& fields, uint32_t digest) {
    const std::optional<std::string> field = DifferentField(frame, fields);
    if (unexplained && (field || IsFullFrame(frame) || frame == framesRecorded)) {
        Differ(Unexplained(*unexplained) + "; the first field that is known to differ " +
               (field ? "is of frame " + std::to_string(frame) + ", " + *field
                      : "is none: it is in the light slots or the shots"));
    }
    if (field) Differ(InFrame(frame) + *field);
    if (digest != section.frame.digest && !unexplained) unexplained = Difference{frame, section.frame.digest, digest};
}

void CompareRest(uint32_t frame, const std::optional<uint64_t>& pixels) {
    if (unexplained) return;
    if (section.frame.pixels && pixels && static_cast<uint32_t>(*pixels) != *section.frame.pixels)
        Differ(InFrame(frame) + "pixels: " + DigestValues(*section.frame.pixels, static_cast<uint32_t>(*pixels)));
    for (int kind = 0; kind < ANSWER_KINDS; ++kind) {
        const uint32_t count = CountOf(section.answers[kind]);
        if (asked[kind] != count)
            Differ(InFrame(frame) + ANSWER_NAMES[kind] + ": " +
                   Values(std::to_string(count), std::to_string(asked[kind])));
    }
}

// A real clock naps when it is read again within the same millisecond. Pauses, such as those without the focus, are
// cut short.
void KeepPace() {
    const auto ahead = [] { return static_cast<int32_t>(paceStart + clockNow - CurrentMachine->milliseconds()); };
    if (!hasPace || ahead() > PAUSE_MAX) paceStart = CurrentMachine->milliseconds() - clockNow;
    hasPace = true;
    for (int32_t left = ahead(); left > 0; left = ahead())
        if (CurrentMachine->sleep) CurrentMachine->sleep(static_cast<uint32_t>(left));
}

bool ReadBytes() {
    bytes.clear();
    if (std::FILE* stream = std::fopen(file.c_str(), "rb")) {
        uint8_t block[16384];
        while (const size_t count = std::fread(block, 1, sizeof block, stream))
            bytes.insert(bytes.end(), block, block + count);
        std::fclose(stream);
    }
    if (bytes.empty()) PrintError("the recording %s cannot be read, or is empty", file.c_str());
    return !bytes.empty();
}

bool Excludes(const Options& options) {
    const std::pair<const char*, bool> others[] = {{"--script", !options.script.empty()},
                                                   {"--record", !options.record.empty()},
                                                   {"--level", options.level != 0},
                                                   {"--renderer", options.renderer != RendererChoice::Unset},
                                                   {"--watch", !options.watch.empty()}};
    for (const auto& [name, given] : others) {
        if (given) PrintError("%s does not go with a replay, which has its own input", name);
        if (given) return true;
    }
    return false;
}

}  // namespace

bool LoadReplay(Options& options) {
    isPlaying = false;
    if (options.replay.empty()) return true;
    file = options.replay;
    if (Excludes(options) || !ReadBytes()) return false;
    RecordingHeader header{};
    std::string error;
    if (!CheckRecording(bytes, header, framesRecorded, error) || !reader.Open(bytes, header, error)) {
        PrintError("%s: %s", file.c_str(), error.c_str());
        return false;
    }
    if (header.hasBoard && options.board == BoardChoice::None) {
        PrintError("%s was recorded with an accelerator; leave out --board none", file.c_str());
        return false;
    }
    if (!header.hasBoard) options.board = BoardChoice::None;
    isPlaying = true;
    isPaced = !options.benchmark;
    drawFrom = options.from;
    clockNow = 0;
    mouse = {};
    hasPace = false;
    unexplained.reset();
    std::memset(keysDown, 0, sizeof keysDown);
    NextSection();
    return true;
}

bool Replaying() {
    return isPlaying;
}

bool FinishReplay(uint32_t framesPlayed) {
    if (!isPlaying) return true;
    isPlaying = false;
    PrintError("%s: the game ended after %u of %u recorded frames", file.c_str(), framesPlayed, framesRecorded);
    return false;
}

uint32_t ReplayClock() {
    const AnswerRun* answer = TakeAnswer(ANSWER_CLOCK);
    clockNow += answer ? static_cast<uint32_t>(answer->words[0]) : 1;
    const bool isSeen = CurrentMachine->present && Progress.framesPlayed + 1 >= drawFrom;
    if (isPaced && isSeen) KeepPace();
    return clockNow;
}

HRESULT ReplayKeys(uint8_t* keys) {
    const AnswerRun* answer = TakeAnswer(ANSWER_KEYS);
    if (!answer) return DIERR_NOTACQUIRED;
    const HRESULT result = ResultOfDevice(static_cast<DeviceResult>(answer->words[0]));
    if (Failed(result)) return result;
    for (size_t i = 1; i < answer->words.size(); ++i)
        keysDown[answer->words[i]] ^= 0x80;
    std::memcpy(keys, keysDown, sizeof keysDown);
    return result;
}

HRESULT ReplayMouse(DIMOUSESTATE& state) {
    const AnswerRun* answer = TakeAnswer(ANSWER_MOUSE);
    if (!answer) return DIERR_NOTACQUIRED;
    const HRESULT result = ResultOfDevice(static_cast<DeviceResult>(answer->words[0]));
    if (Failed(result)) return result;
    state = {static_cast<LONG>(answer->words[1]),
             static_cast<LONG>(answer->words[2]),
             static_cast<LONG>(answer->words[3]),
             {}};
    for (int button = 0; button < 4; ++button)
        state.rgbButtons[button] = answer->words[4] >> button & 1 ? 0x80 : 0;
    return result;
}

bool ReplayMessage(MSG& message) {
    const AnswerRun* answer = TakeAnswer(ANSWER_MESSAGE);
    if (!answer || answer->words[0] == 0) return false;
    message.message = static_cast<UINT>(answer->words[0]);
    message.wParam = static_cast<WPARAM>(answer->words[1]);
    message.lParam = static_cast<LPARAM>(answer->words[2]);
    return true;
}

void ReplayFile(const char* path, uint32_t digest) {
    const AnswerRun* answer = TakeAnswer(ANSWER_FILE);
    if (answer && static_cast<uint32_t>(answer->words[0]) != digest)
        Differ(std::string("it was recorded with another ") + path +
               "; replay it with the data it was made with (--data), or record it again");
}

bool ReplayFrame(uint32_t frame, const FrameFields& fields, uint64_t digest, const std::optional<uint64_t>& pixels) {
    if (section.end) EndAsRecorded(frame);
    CompareFields(frame, fields, static_cast<uint32_t>(digest));
    CompareRest(frame, pixels);
    NextSection();
    if (!section.end || *section.end == RunEnd::Failure) return false;
    std::fprintf(stderr, "%u frames, all as recorded\n", frame);
    isPlaying = false;
    return true;
}

bool ReplayWantsPixels() {
    return isPlaying && section.frame.pixels;
}

void StopReplay() {
    std::fprintf(stderr, "the replay was ended after %u of %u frames\n", Progress.framesPlayed, framesRecorded);
    isPlaying = false;
    EndRun(EXIT_SUCCESS);
}
