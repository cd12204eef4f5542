#include "session/run.h"

#include "input/devices.h"
#include "input/session_hooks.h"
#include "interfaces/display.h"
#include "interfaces/presentation.h"
#include "machine/clock.h"
#include "machine/digest.h"
#include "machine/log.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "machine/settings.h"
#include "session/benchmark.h"
#include "session/closing.h"
#include "session/ending.h"
#include "session/front_end.h"
#include "session/message.h"
#include "session/photo.h"
#include "session/pictures.h"
#include "session/progress.h"
#include "session/recorder.h"
#include "session/replay.h"
#include "session/screenshot.h"
#include "session/script_player.h"
#include "session/settings_file.h"
#include "session/settings_screen.h"
#include "session/smooth.h"
#include "session/trace.h"
#include "session/watch.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

bool underWay = false;
bool endsByItself = false;
uint32_t frameLimit = 0;  // 0: none
uint32_t firstDrawn = 1;
uint32_t framesAsked = 0;  // the last frame that --frames or a shot waits for
std::vector<ShotRequest> frameShots;
std::FILE* trace = nullptr;
std::string tracePath;

uint32_t lastDropped = 0;  // polygons dropped in the frame before
uint32_t lastEvent = 0;    // clock of the latest thing that was asked for

void CollectShots(const Options& options, const Script& script) {
    frameShots = options.shots;
    for (const ScriptLine& line : script.lines)
        if (line.isFrame && line.action == ScriptAction::Shot) frameShots.push_back({line.when, line.file});
    for (const ShotRequest& shot : frameShots)
        framesAsked = std::max(framesAsked, shot.frame);
}

bool OpenTrace(const std::string& file) {
    if (file.empty()) return true;
    trace = std::fopen(file.c_str(), "w");
    if (!trace) PrintError("cannot write the trace %s: %s", file.c_str(), std::strerror(errno));
    tracePath = file;
    return trace != nullptr;
}

bool CloseTrace() {
    if (!trace) return true;
    const bool complete = FlushOutput(trace, "the trace " + tracePath);
    std::fclose(trace);
    trace = nullptr;
    return complete;
}

// The picture of two frames ago is drawn, too, because the next frame is drawn over it after a flip.
bool IsDrawn(uint32_t frame) {
    return frame + 2 >= firstDrawn;
}

std::optional<uint64_t> DigestPicture() {
    const Picture* picture = HostWantsPicture() && FrontIsReproducible() ? FrontPicture() : nullptr;
    if (!picture) return {};
    Digest digest;
    digest.Add(picture->pixels, sizeof(uint32_t) * static_cast<size_t>(picture->width * picture->height));
    return digest.Value();
}

// A recording holds the software renderer's pictures of the usual size only, in which it is replayed.
std::optional<uint32_t> LowHalf(const std::optional<uint64_t>& digest) {
    if (!digest || !RecordsPictures() || (ProgramScreenMode() && SettingValue(Setting::SoftwareSize) != 0)) return {};
    return static_cast<uint32_t>(*digest);
}

// Ends a replay when the user presses Escape or closes the window.
void WatchReplay() {
    uint8_t keys[KEY_COUNT];
    TakeKeys(keys);
    if (keys[DIK_ESCAPE] || CloseRequested()) StopReplay();
}

void EndWhenIdle() {
    if (endsByItself && !ScriptTimesPending() && ClockNow() - lastEvent >= RUN_IDLE_END) RequestClose();
}

// Logs only the first of several frames in a row that drop polygons.
void LogDropped(uint32_t dropped) {
    if (dropped > 0 && lastDropped == 0)
        HostLog("frame %u: no room for %u polygons of the character", Progress.framesPlayed, dropped);
    lastDropped = dropped;
}

void AtKeyboardPoll() {
    ++Progress.pollsSincePeek;
    DeferFramePicture();
    if (Replaying()) {
        CurrentMachine->pump();
        WatchReplay();
        return;
    }
    HoldFront(false);
    CurrentMachine->beforeKeyboardPoll();
    ReadClock();
    WatchFrontEnd();
    if (InFrontEnd()) SetMouseUse(MouseUse::None);
    if (PlayScriptAtPoll()) lastEvent = ClockNow();
    EndWhenIdle();
    CloseAtPoll();
}

void AtKeyboardRead(uint8_t* keys) {
    OfferSettings(keys);
    OfferSmooth(keys);
    OfferScreenshot(keys);
    HideOldMessage();
    AddFrontEndKeys(keys);
}

void AtPeek() {
    Progress.pollsSincePeek = 0;
}

void AtWait() {
    if (PlayScriptAtWait()) lastEvent = ClockNow();
    EndWhenIdle();
    CloseAtWait();
}

void OpenedFile(const char* path, uint32_t digest) {
    if (Replaying())
        ReplayFile(path, digest);
    else
        RecordFile(digest);
}

const SessionHooks HOOKS = {
    .atKeyboardPoll = AtKeyboardPoll,
    .atKeyboardRead = AtKeyboardRead,
    .atPeek = AtPeek,
    .atWait = AtWait,
    .afterClock = SmoothAtClock,
    .replaying = Replaying,
    .replayClock = ReplayClock,
    .replayKeys = ReplayKeys,
    .replayMouse = ReplayMouse,
    .replayMessage = ReplayMessage,
    .tookClock = RecordClock,
    .tookKeys = RecordKeys,
    .tookMouse = RecordMouse,
    .tookMessage = RecordMessage,
    .openedFile = OpenedFile,
    .wantsPicture = HostWantsPicture,
    .requestClose = RequestClose,
    .keepFailure = KeepFailure,
    .finish = [] { FinishRun(); },
};

}  // namespace

bool StartRun(const Options& options, Script script) {
    ResetRun();
    endsByItself = (options.headless || !options.script.empty()) && !Replaying();
    frameLimit = framesAsked = options.frames;
    CollectShots(options, script);
    firstDrawn = options.from;
    for (const ShotRequest& shot : frameShots)
        firstDrawn = std::min(firstDrawn, shot.frame);
    if (options.benchmark) StartBenchmark();
    StartFrontEndKeys(options);
    StartWatch(options.watch);
    StartScript(std::move(script));
    underWay = OpenTrace(options.trace) && StartRecorder(options) && StartSmooth(options);
    return underWay;
}

bool FinishRun() {
    if (!underWay) return true;
    underWay = false;
    if (Progress.framesPlayed < framesAsked)
        std::fprintf(stderr, "ended after %u of %u frames\n", Progress.framesPlayed, framesAsked);
    FinishBenchmark();
    const bool replayed = Progress.framesPlayed == frameLimit || FinishReplay(Progress.framesPlayed);
    const bool recorded = FinishRecorder();
    const bool traceComplete = CloseTrace();
    const bool motionComplete = FinishSmooth();
    SaveSettings();
    const bool logComplete = FinishLog();
    return traceComplete && motionComplete && logComplete && !PicturesFailed() && recorded && replayed;
}

void ResetRun() {
    Session = HOOKS;
    FinishBeforeEnd = FinishRun;
    Progress = {};
    CloseTrace();
    ResetClock();
    ResetClosing();
    StartScript({});
    StartFrontEndKeys({});
    StartWatch({});
    frameShots.clear();
    underWay = endsByItself = false;
    frameLimit = framesAsked = lastDropped = 0;
    lastEvent = 0;
}

bool HostWantsPicture() {
    return IsDrawn(Progress.framesPlayed + 1);
}

bool HostWantsReload(HostReload& reload) {
    if (!LevelIsNew(reload)) return false;
    HoldFront(true);
    return true;
}

bool HostWantsViews() {
    return !Benchmarking() && (SmoothPictures() || SteadyLamps() || ScriptTakesPhotos() || HasSettings());
}

bool HostWantsSteadyLamps() {
    return SteadyLamps();
}

// Recordings do not hold it, so a replay is played in the usual size.
int32_t HostSoftwareScreen() {
    return Replaying() ? 0 : SettingValue(Setting::SoftwareSize);
}

bool HostEndOfFrame(const HostFrameReport& report) {
    EndBenchmarkFrame();
    const uint32_t frame = Progress.framesPlayed + 1;
    SetMouseUse(report.mouseFlies ? MouseUse::Always : MouseUse::WithButton);
    if (frame <= framesAsked || ScriptFramesPending()) lastEvent = ClockNow();
    const FrameFields fields = TakeFields(report);
    const uint64_t digest = DigestFrame(frame, fields, report);
    const bool wantsPixels = trace || RecordsPictures() || (ReplayWantsPixels() && !Benchmarking());
    const std::optional<uint64_t> pixels = wantsPixels ? DigestPicture() : std::nullopt;
    if (trace) std::fprintf(trace, "%s\n", TraceLine(frame, fields, digest, report.dropped, pixels).c_str());
    for (const ShotRequest& shot : frameShots)
        if (shot.frame == frame) WritePicture(shot.file);
    const bool replayEnds = Replaying() && ReplayFrame(frame, fields, digest, firstDrawn == 1 ? pixels : std::nullopt);
    RecordFrame({fields, static_cast<uint32_t>(digest), LowHalf(pixels)});
    Progress.framesPlayed = frame;
    LogDropped(report.dropped);
    KeepPhotoCamera(report);
    BeginSmoothWait(report);
    return replayEnds || (frameLimit != 0 && Progress.framesPlayed >= frameLimit) || CloseRequested();
}
