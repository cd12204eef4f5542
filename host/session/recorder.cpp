#include "session/recorder.h"

#include "machine/output.h"

#include "boards/boards.h"
#include "input/devices.h"
#include "machine/log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

namespace {

constexpr size_t BYTES_MAX = size_t{64} << 20;  // several hours; a longer run is recorded up to there

std::optional<RecordingWriter> writer;
bool isAskedFor = false;
std::string file, logFile;
std::string failureText;

Section section;
uint32_t lastClock = 0;
uint8_t lastKeys[KEY_COUNT];

void Add(AnswerKind kind, std::vector<int64_t> words) {
    Answers& answers = section.answers[kind];
    if (!answers.empty() && answers.back().words == words && answers.back().times < UINT32_MAX)
        ++answers.back().times;
    else
        answers.push_back({1, std::move(words)});
}

void EndSection() {
    writer->Add(section);
    section = {};
}

bool WriteAll() {
    std::FILE* stream = std::fopen(file.c_str(), "wb");
    bool written =
        stream && std::fwrite(writer->Bytes().data(), 1, writer->Bytes().size(), stream) == writer->Bytes().size();
    if (stream) written = std::fclose(stream) == 0 && written;
    if (!written) PrintError("cannot write the recording %s: %s", file.c_str(), std::strerror(errno));
    return written;
}

bool End(RunEnd end) {
    section.end = end;
    EndSection();
    const bool written = WriteAll();
    writer.reset();
    return written;
}

}  // namespace

bool StartRecorder(const Options& options) {
    isAskedFor = !options.record.empty();
    logFile = options.log;
    failureText.clear();
    file = isAskedFor ? options.record : std::filesystem::path(options.log).replace_extension(".rec").string();
    writer.reset();
    section = {};
    lastClock = 0;
    std::fill(std::begin(lastKeys), std::end(lastKeys), uint8_t{0});
    if (!options.replay.empty() || (!isAskedFor && logFile.empty())) return true;
    writer.emplace(RecordingHeader{CurrentBoard != nullptr});
    return !isAskedFor || WriteAll();
}

bool FinishRecorder() {
    if (!writer) return true;
    if (isAskedFor) return End(RunEnd::Ordinary);
    writer.reset();
    return true;
}

std::string KeepFailure() {
    if (!failureText.empty()) return failureText;
    std::string text;
    if (writer && End(RunEnd::Failure)) text = "The recording of this run, for --replay, is " + file;
    if (!logFile.empty()) text += (text.empty() ? "The" : ", the") + (" log is " + logFile);
    return failureText = text;
}

bool RecordsPictures() {
    return writer && isAskedFor;
}

void RecordClock(uint32_t milliseconds) {
    if (!writer) return;
    Add(ANSWER_CLOCK, {milliseconds - lastClock});
    lastClock = milliseconds;
}

void RecordKeys(HRESULT result, const uint8_t* keys) {
    if (!writer) return;
    std::vector<int64_t> words = {DeviceResultOf(result)};
    for (int code = 0; code < KEY_COUNT && !Failed(result); ++code) {
        if (keys[code] != lastKeys[code]) words.push_back(code);
        lastKeys[code] = keys[code];
    }
    Add(ANSWER_KEYS, std::move(words));
}

void RecordMouse(HRESULT result, const DIMOUSESTATE& state) {
    if (!writer) return;
    if (Failed(result)) return Add(ANSWER_MOUSE, {DeviceResultOf(result), 0, 0, 0, 0});
    int64_t buttons = 0;
    for (int button = 0; button < 4; ++button)
        if (state.rgbButtons[button]) buttons |= int64_t{1} << button;
    Add(ANSWER_MOUSE, {DEVICE_READ, state.lX, state.lY, state.lZ, buttons});
}

void RecordMessage(const MSG* message) {
    if (!writer) return;
    if (message)
        Add(ANSWER_MESSAGE, {message->message, static_cast<int64_t>(message->wParam), message->lParam});
    else
        Add(ANSWER_MESSAGE, {0, 0, 0});
}

void RecordFile(uint32_t digest) {
    if (writer) Add(ANSWER_FILE, {digest});
}

void RecordFrame(const RecordedFrame& frame) {
    if (!writer) return;
    section.frame = frame;
    EndSection();
    if (writer->Bytes().size() < BYTES_MAX) return;
    HostLog("the recording ends here: it is %zu bytes long", writer->Bytes().size());
    FinishRecorder();
}

DeviceResult DeviceResultOf(HRESULT result) {
    if (!Failed(result)) return DEVICE_READ;
    return result == DIERR_INPUTLOST ? DEVICE_LOST : DEVICE_NOT_ACQUIRED;
}

HRESULT ResultOfDevice(DeviceResult result) {
    return result == DEVICE_READ ? DI_OK : result == DEVICE_LOST ? DIERR_INPUTLOST : DIERR_NOTACQUIRED;
}
