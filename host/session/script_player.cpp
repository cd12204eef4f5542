#include "session/script_player.h"

#include "input/devices.h"
#include "machine/clock.h"
#include "session/closing.h"
#include "session/front_end.h"
#include "session/photo.h"
#include "session/pictures.h"
#include "session/progress.h"

#include <algorithm>

namespace {

// Lines of one kind of moment, in the order in which they act.
struct LineQueue {
    std::vector<ScriptLine> lines;
    size_t next = 0;

    bool Pending() const { return next < lines.size(); }
    const ScriptLine& Head() const { return lines[next]; }

    void Add(const ScriptLine& line) { lines.push_back(line); }

    void Sort() {
        std::stable_sort(lines.begin(), lines.end(),
                         [](const ScriptLine& a, const ScriptLine& b) { return a.when < b.when; });
    }
};

LineQueue byFrame;
LineQueue byTime;
bool takesPhotos = false;

void Act(const ScriptLine& line) {
    switch (line.action) {
    case ScriptAction::KeyDown:
    case ScriptAction::KeyUp: DeviceKey(KeySource::Script, line.code, line.action == ScriptAction::KeyDown); break;
    case ScriptAction::Tap: PulseKey(line.code); break;
    case ScriptAction::Mouse: DeviceMouseMotion(line.x, line.y, 0); break;
    case ScriptAction::Button: DeviceMouseButton(KeySource::Script, line.code, line.on); break;
    case ScriptAction::Focus: DeviceFocus(line.on); break;
    case ScriptAction::Wait: SetClock(ClockNow() + line.milliseconds); break;
    case ScriptAction::Shot: WritePicture(line.file); break;
    case ScriptAction::Photo: WritePhoto(line.camera, line.file); break;
    case ScriptAction::Quit: RequestClose(); break;
    }
}

bool EndsWait(const ScriptLine& line) {
    return line.action == ScriptAction::Quit || (line.action == ScriptAction::Focus && line.on);
}

bool FrameLineDue() {
    return byFrame.Pending() && !InFrontEnd() && byFrame.Head().when <= Progress.framesPlayed + 1;
}

bool TimeLineDue() {
    return byTime.Pending() && byTime.Head().when <= ClockNow();
}

// The queue whose head acts next, or null.
LineQueue* NextDue() {
    const bool frame = FrameLineDue();
    const bool time = TimeLineDue();
    if (frame && time) return byFrame.Head().number < byTime.Head().number ? &byFrame : &byTime;
    return frame ? &byFrame : time ? &byTime : nullptr;
}

bool ActTimeLines() {
    bool acted = false;
    for (; TimeLineDue(); acted = true)
        Act(byTime.lines[byTime.next++]);
    return acted;
}

}  // namespace

void StartScript(Script script) {
    byFrame = byTime = {};
    for (const ScriptLine& line : script.lines) {
        if (!line.isFrame)
            byTime.Add(line);
        else if (line.action != ScriptAction::Shot)
            byFrame.Add(line);
    }
    takesPhotos = std::any_of(script.lines.begin(), script.lines.end(),
                              [](const ScriptLine& line) { return line.action == ScriptAction::Photo; });
    byFrame.Sort();
    byTime.Sort();
}

bool PlayScriptAtPoll() {
    bool acted = false;
    while (LineQueue* queue = NextDue()) {
        Act(queue->lines[queue->next++]);
        acted = true;
    }
    return acted;
}

bool PlayScriptAtWait() {
    if (ActTimeLines()) return true;
    const auto timesLeft = byTime.lines.begin() + static_cast<std::ptrdiff_t>(byTime.next);
    if (std::any_of(timesLeft, byTime.lines.end(), EndsWait)) return false;
    const auto framesLeft = byFrame.lines.begin() + static_cast<std::ptrdiff_t>(byFrame.next);
    const auto found = std::find_if(framesLeft, byFrame.lines.end(), EndsWait);
    if (found == byFrame.lines.end()) return false;
    const ScriptLine line = *found;
    byFrame.lines.erase(found);
    Act(line);
    return true;
}

bool ScriptFramesPending() {
    return byFrame.Pending();
}

bool ScriptTakesPhotos() {
    return takesPhotos;
}

bool ScriptTimesPending() {
    return byTime.Pending();
}
