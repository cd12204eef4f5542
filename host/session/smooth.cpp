#include "session/smooth.h"

#include "input/keys.h"
#include "interfaces/presentation.h"
#include "machine/clock.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "machine/settings.h"
#include "session/benchmark.h"
#include "session/front_end.h"
#include "session/message.h"
#include "session/progress.h"
#include "session/replay.h"
#include "session/settings_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr uint8_t SMOOTH_KEY = KeyCode("S");
constexpr uint32_t TICK_MS = 16;
constexpr uint32_t USUAL_RATE = 60;  // pictures a second of a display that does not tell

// Times are readings of the host's clock, in ms.
struct Wait {
    uint32_t began = 0;       // when the frame began
    uint32_t length = 0;      // how long it lasts
    bool isOpen = false;      // the game waits for the frame's end
    bool isDeferred = false;  // the frame's own picture has not been shown
};
Wait wait;
uint32_t lastAnswer = 0;  // what the clock answered the game last, ms
uint32_t begunAt = 0;     // when the latest picture was begun
bool isMeasured = true;   // the clock has been read since
uint32_t cost = 0;        // how long a picture takes, as far as the last ones tell
bool keyWasDown = false;

std::FILE* motion = nullptr;
MotionRequest request;

uint32_t DisplayInterval() {
    const int rate = CurrentMachine->refreshRate ? CurrentMachine->refreshRate() : 0;
    return 1000 / (rate > 0 ? static_cast<uint32_t>(rate) : USUAL_RATE);
}

void NoteMotion(float way) {
    if (!motion) return;
    float pixel[2];
    std::fprintf(motion, "%u %u %.3f", ClockNow(), Progress.framesPlayed, double{way});
    if (CurrentGame->pointOnScreen(request.point, pixel))
        std::fprintf(motion, " %.2f %.2f\n", double{pixel[0]}, double{pixel[1]});
    else
        std::fputs(" - -\n", motion);
}

// A slow picture counts for some time, but not for ever.
uint32_t Eased(uint32_t milliseconds) {
    return milliseconds * 7 / 8;
}

void EndWait() {
    wait.isOpen = false;
    if (!wait.isDeferred) return;
    wait.isDeferred = false;
    ShowDeferredFront();
    NoteMotion(1.0f);
    cost = Eased(cost);
}

bool CanDraw() {
    return CurrentGame->drawBetween && !Benchmarking();
}

bool IsSmooth() {
    return SmoothPictures() && wait.length > DisplayInterval();
}

bool FillsTheWait() {
    return (IsSmooth() || SteadyLamps()) && HostWantsPicture();
}

// At a reading of the clock by a game that will ask again and again until `moment`.
void SleepUntil(uint32_t moment) {
    const auto left = static_cast<int32_t>(moment - ClockNow());
    if (left > 0 && CurrentMachine->sleep && !Replaying()) CurrentMachine->sleep(static_cast<uint32_t>(left));
}

// The time since the last reading of the clock is the latest picture's.
void MeasureCost() {
    if (!isMeasured) cost = std::max(ClockNow() - begunAt, Eased(cost));
    isMeasured = true;
}

// Where the program waits for the display, that gives the pace.
bool IsDue() {
    return ClockNow() - begunAt >= DisplayInterval();
}

bool HasTime() {
    return ClockNow() - wait.began + cost < wait.length;
}

float WayNow() {
    if (!IsSmooth()) return 1.0f;
    return std::min(1.0f, static_cast<float>(ClockNow() - wait.began) / static_cast<float>(wait.length));
}

bool ShowBetween() {
    const float way = WayNow();
    if (!CurrentGame->drawBetween(way)) return false;
    begunAt = ClockNow();
    isMeasured = false;
    wait.isOpen = IsSmooth();
    wait.isDeferred = false;
    NoteMotion(way);
    return true;
}

}  // namespace

bool StartSmooth(const Options& options) {
    wait = {};
    begunAt = cost = lastAnswer = 0;
    isMeasured = true;
    if (!options.motion) return true;
    request = *options.motion;
    motion = std::fopen(request.file.c_str(), "w");
    if (motion)
        std::fputs("# ms, game frame, way to it from the frame before, x, y\n", motion);
    else
        PrintError("cannot write the motion %s: %s", request.file.c_str(), std::strerror(errno));
    return motion != nullptr;
}

bool FinishSmooth() {
    if (!motion) return true;
    const bool complete = FlushOutput(motion, "the motion " + request.file);
    std::fclose(motion);
    motion = nullptr;
    return complete;
}

bool SmoothPictures() {
    return SettingValue(Setting::SmoothPictures) != 0 && CanDraw();
}

bool SteadyLamps() {
    return SettingValue(Setting::SteadyLamps) != 0 && CanDraw();
}

void OfferSmooth(const uint8_t* keys) {
    const bool pressed = keys[SMOOTH_KEY] != 0 && !keyWasDown;
    keyWasDown = keys[SMOOTH_KEY] != 0;
    if (!pressed || InFrontEnd() || !CurrentMachine->present) return;
    StepSetting(Setting::SmoothPictures, 1);
    SaveSettings();
    ShowMessage("Smooth pictures: ",
                SettingText(Setting::SmoothPictures) + (SmoothPictures() ? ", one game frame later" : ""));
}

void DeferFramePicture() {
    EndWait();
    wait.isDeferred = FillsTheWait() && !InFrontEnd();
    DeferFront(wait.isDeferred);
}

void BeginSmoothWait(const HostFrameReport& report) {
    DeferFront(false);
    wait.began = lastAnswer;
    wait.length = report.leastTicks * TICK_MS;
    wait.isOpen = FillsTheWait();
    if (!wait.isDeferred) NoteMotion(1.0f);
}

void SmoothAtClock() {
    lastAnswer = ClockNow();
    if (!wait.isOpen) return SleepUntil(wait.began + wait.length);
    MeasureCost();
    const bool hasTime = !IsSmooth() || HasTime();
    if (hasTime && IsSmooth() && !IsDue())
        return SleepUntil(std::min(begunAt + DisplayInterval(), wait.began + wait.length));
    if (!hasTime || !ShowBetween()) EndWait();
}
