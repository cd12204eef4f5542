#include "backends/web/web_machine.h"

#include "backends/web/keys.h"
#include "backends/web/page_calls.h"
#include "backends/web/screen.h"
#include "host/win32.h"
#include "input/devices.h"
#include "input/pads.h"
#include "machine/options.h"
#include "machine/overlay.h"
#include "machine/settings.h"
#include "machine/track_reader.h"

#include <cstdio>
#include <cstdlib>
#include <emscripten.h>
#include <string>

namespace {

constexpr int CLOCK_NAP_MS = 1;      // nap of a loop that reads the clock until it moves
constexpr int KEYBOARD_NAP_MS = 2;   // nap of a loop that polls the keyboard until a key is down
constexpr int FRONT_END_NAP_MS = 8;  // nap of each poll before a level, where nothing moves
constexpr int WAIT_SLICE_MS = 20;

uint32_t lastClock = 0, lastKeyboardPoll = 0, lastTurn = 0;
bool opened = false;

uint32_t Now() {
    return static_cast<uint32_t>(emscripten_get_now());
}

uint32_t Milliseconds() {
    if (Now() == lastClock) pageNap(CLOCK_NAP_MS);
    return lastClock = Now();
}

void Sleep(uint32_t milliseconds) {
    pageSleepUntil(lastClock + milliseconds);
}

// The mouse steers nothing on the screens before a level.
void AskForPointer() {
    static bool asked = false;
    const bool steers = DeviceMouseWanted() && DeviceMouseUse() != MouseUse::None;
    if (steers != asked) pageCapturePointer(steers);
    asked = steers;
}

void Pump() {
    pageReport();
    AskForPointer();
    ShowAgainAfterResize();
    const uint32_t now = Now();
    TurnWithPads(now - lastTurn);
    lastTurn = now;
}

void BeforeKeyboardPoll() {
    if (DeviceMouseUse() == MouseUse::None)
        pageNap(FRONT_END_NAP_MS);
    else if (Now() == lastKeyboardPoll)
        pageNap(KEYBOARD_NAP_MS);
    lastKeyboardPoll = Now();
    Pump();
}

void Wait() {
    pageWait(WAIT_SLICE_MS);
    Pump();
}

void ApplySettings() {
    pageApplySettings(SettingValue(Setting::FullScreen), WINDOW_SIZES[SettingValue(Setting::WindowSize)].width,
                      SettingValue(Setting::Volume), SettingValue(Setting::MusicStops));
    ShowAgain();
}

// A page cannot take the whole screen by itself, and knows no folder of the player's.
bool Start(const Options&) {
    SetSetting(Setting::FullScreen, pageIsFullScreen());
    unsetenv("HOME");
    return true;
}

bool CreateGameWindow(const char*) {
    OpenScreen();
    ApplySettings();
    return opened = true;
}

std::string KeyLabel(uint8_t scanCode) {
    char label[32] = "";
    const std::string place(PlaceOfScanCode(scanCode));
    pageKeyLabel(place.c_str(), label, sizeof label);
    return CanWrite(label) ? label : "US " + place;
}

int ShowMessage(const char* text, const char* caption) {
    std::fprintf(stderr, "%s: %s\n", caption, text);
    pageShowMessage(text);
    return IDOK;
}

void PlaySound(std::shared_ptr<TrackReader> track) {
    if (track) {
        pagePlayTrack(track->Path().c_str(), track->SpanStart(), track->SpanEnd());
    } else {
        pagePlayTrack(nullptr, 0, 0);
    }
}

}  // namespace

EMSCRIPTEN_KEEPALIVE void PageKey(const char* place, int down) {
    const uint8_t scanCode = ScanCodeOfPlace(place);
    if (scanCode == 0) return;
    DeviceKey(KeySource::Keyboard, scanCode, down != 0);
}

EMSCRIPTEN_KEEPALIVE void PageMouse(int x, int y, int wheel) {
    DeviceMouseMotion(0, 0, wheel);
    DeviceHandMotion(x, y);
}

EMSCRIPTEN_KEEPALIVE void PageMouseButton(int button, int down) {
    DeviceMouseButton(KeySource::Keyboard, button, down != 0);
}

EMSCRIPTEN_KEEPALIVE void PageFocus(int gained) {
    DeviceFocus(gained != 0);
}

EMSCRIPTEN_KEEPALIVE void PageFullScreen(int on) {
    SetSetting(Setting::FullScreen, on != 0 ? 1 : 0);
}

EMSCRIPTEN_KEEPALIVE void PagePadButton(int pad, int button, int down) {
    PadPress(pad, static_cast<PadButton>(button), down != 0);
}

EMSCRIPTEN_KEEPALIVE void PagePadAxis(int pad, int axis, int value) {
    PadMove(pad, static_cast<PadAxis>(axis), value);
}

EMSCRIPTEN_KEEPALIVE void PagePadGone(int pad) {
    PadGone(pad);
}

const Machine WebMachine = {
    .name = "web",
    .start = Start,
    .stop = [] { pagePlayTrack(nullptr, 0, 0); },
    .milliseconds = Milliseconds,
    .sleep = Sleep,
    .beforeKeyboardPoll = BeforeKeyboardPoll,
    .pump = Pump,
    .wait = Wait,
    .createWindow = CreateGameWindow,
    .desktopSize = pageScreenSize,
    .present = ShowPicture,
    .presentTexture = ShowTexture,
    .showOverlay = ShowOverlayPicture,
    .applySettings = ApplySettings,
    .keyLabel = KeyLabel,
    .setMouseCaptured = [](bool) {},  // see AskForPointer
    .bringFile = pageBringFile,
    .keepFile = pageKeepFile,
    .messageBox = ShowMessage,
    .hasWindow = [] { return opened; },
    .refreshRate = pageRefreshRate,
    .windowSize = pageScreenSize,
    .displays = nullptr,
    .openSound = [](std::string&) { return true; },
    .playSound = PlaySound,
    .closeSound = [] { pagePlayTrack(nullptr, 0, 0); },
};
