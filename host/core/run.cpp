#include "core/run.h"

#include "core/clock.h"
#include "core/closing.h"
#include "core/front_end.h"
#include "core/log.h"
#include "core/machine.h"
#include "core/output.h"
#include "core/presentation.h"
#include "core/process.h"
#include "core/script_player.h"
#include "core/shots.h"
#include "core/trace.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool underWay = false;
bool endsByItself = false;
uint32_t frameLimit = 0;   // 0: none
uint32_t framesAsked = 0;  // the last frame that the limit or a shot waits for
std::vector<ShotRequest> frameShots;
std::FILE* trace = nullptr;
std::string tracePath;

uint32_t framesPlayed = 0;
uint32_t lastDropped = 0;  // of the frame before
uint32_t pollsSincePeek = 1;
uint32_t lastEvent = 0;  // clock of the latest thing that was asked for

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
    if (!trace) std::fprintf(stderr, "tarnwick: cannot write the trace %s: %s\n", file.c_str(), std::strerror(errno));
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

void EndWhenIdle() {
    if (endsByItself && !ScriptTimesPending() && ClockNow() - lastEvent >= RUN_IDLE_END) RequestClose();
}

// The first frame of a row of them tells enough.
void LogDropped(uint32_t dropped) {
    if (dropped > 0 && lastDropped == 0)
        HostLog("frame %u: no room for %u polygons of the character", framesPlayed, dropped);
    lastDropped = dropped;
}

}  // namespace

bool StartRun(const Options& options, Script script) {
    ResetRun();
    endsByItself = options.headless || !options.script.empty();
    frameLimit = framesAsked = options.frames;
    CollectShots(options, script);
    StartFrontEndKeys(options);
    StartScript(std::move(script));
    underWay = OpenTrace(options.trace);
    return underWay;
}

bool FinishRun() {
    if (!underWay) return true;
    underWay = false;
    if (framesPlayed < framesAsked) std::fprintf(stderr, "ended after %u of %u frames\n", framesPlayed, framesAsked);
    const bool traceComplete = CloseTrace();
    const bool logComplete = FinishLog();
    return traceComplete && logComplete && !ShotsFailed();
}

void EndRun(int status) {
    const bool complete = FinishRun();
    CurrentMachine->stop();
    EndBySignal();
    std::exit(complete ? status : EXIT_FAILURE);
}

uint32_t FramesPlayed() {
    return framesPlayed;
}

uint32_t PollsSincePeek() {
    return pollsSincePeek;
}

void AtKeyboardPoll() {
    ++pollsSincePeek;
    CurrentMachine->beforeKeyboardPoll();
    ReadClock();
    WatchFrontEnd();
    if (PlayScriptAtPoll()) lastEvent = ClockNow();
    EndWhenIdle();
    CloseAtPoll();
}

void AtKeyboardRead() {
    PressFrontEndKeys();
}

void AtPeek() {
    pollsSincePeek = 0;
}

void AtWait() {
    if (PlayScriptAtWait()) lastEvent = ClockNow();
    EndWhenIdle();
    CloseAtWait();
}

void ResetRun() {
    CloseTrace();
    ResetClock();
    ResetClosing();
    StartScript({});
    StartFrontEndKeys({});
    frameShots.clear();
    underWay = endsByItself = false;
    frameLimit = framesAsked = framesPlayed = lastDropped = 0;
    pollsSincePeek = 1;
    lastEvent = 0;
}

bool HostEndOfFrame(const HostFrameReport& report) {
    ++framesPlayed;
    LogDropped(report.dropped);
    if (framesPlayed <= framesAsked || ScriptFramesPending()) lastEvent = ClockNow();
    if (trace)
        std::fprintf(trace, "%s\n",
                     TraceLine(framesPlayed, report, FrontIsReproducible() ? FrontPicture() : nullptr).c_str());
    for (const ShotRequest& shot : frameShots)
        if (shot.frame == framesPlayed) WriteShot(shot.file);
    return (frameLimit != 0 && framesPlayed >= frameLimit) || CloseRequested();
}
