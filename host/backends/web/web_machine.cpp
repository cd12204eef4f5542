#include "backends/web/web_machine.h"

#include "backends/web/keys.h"
#include "backends/web/page_calls.h"
#include "boards/gpu/gl_context.h"
#include "boards/gpu/gl_picture.h"
#include "host/win32.h"
#include "input/devices.h"
#include "input/keys.h"
#include "input/pads.h"
#include "machine/options.h"
#include "machine/track_reader.h"

#include <bitset>
#include <cstdio>
#include <emscripten.h>
#include <optional>
#include <string>

namespace {

constexpr int CLOCK_NAP_MS = 1;     // nap of a loop that reads the clock until it moves
constexpr int KEYBOARD_NAP_MS = 2;  // nap of a loop that polls the keyboard until a key is down
constexpr int WAIT_SLICE_MS = 20;

uint32_t lastClock = 0, lastKeyboardPoll = 0, lastTurn = 0;
std::bitset<KEY_COUNT> keysHeld[2];  // by one place of the keyboard, and by a second one that stands for the same key
std::optional<GlPicture> shown;
int shownWidth = 0, shownHeight = 0;  // size of the canvas when it was drawn last, pixels
bool opened = false;

uint32_t Now() {
    return static_cast<uint32_t>(emscripten_get_now());
}

uint32_t Milliseconds() {
    if (Now() == lastClock) pageNap(CLOCK_NAP_MS);
    return lastClock = Now();
}

void DrawShown() {
    pageCanvasSize(&shownWidth, &shownHeight);
    if (shown->Draw(shownWidth, shownHeight)) pageShown();
}

// The front end draws only when something changes, and the page may have another size by then.
void DrawAfterResize() {
    int width = 0, height = 0;
    pageCanvasSize(&width, &height);
    if (shown && (width != shownWidth || height != shownHeight)) DrawShown();
}

void Pump() {
    pageReport();
    DrawAfterResize();
    const uint32_t now = Now();
    TurnWithPads(now - lastTurn);
    lastTurn = now;
}

void BeforeKeyboardPoll() {
    if (Now() == lastKeyboardPoll) pageNap(KEYBOARD_NAP_MS);
    lastKeyboardPoll = Now();
    Pump();
}

void Wait() {
    pageWait(WAIT_SLICE_MS);
    Pump();
}

// Without WebGL the page draws the pictures with its own means.
bool CreateGameWindow(const char*) {
    std::string problem;
    shown.emplace();
    if (!pageHasWebGl() || !EnterGl(problem) || !shown->Prepare(problem)) {
        if (!problem.empty()) std::fprintf(stderr, "no WebGL: %s\n", problem.c_str());
        shown.reset();
    }
    return opened = true;
}

void DesktopSize(int* width, int* height) {
    pageCanvasSize(width, height);
}

void Present(const Picture& picture) {
    if (shown) {
        shown->Take(picture);
        DrawShown();
        return;
    }
    const size_t pixels = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height);
    pageShowPixels(RedFirst({picture.pixels, pixels}).data(), picture.width, picture.height);
    pageShown();
}

bool PresentTexture(uint32_t texture, int width, int height) {
    if (!shown) return false;
    shown->TakeTexture(texture, width, height);
    DrawShown();
    return true;
}

void ShowOverlayPicture(const Picture* overlay) {
    if (!shown) return;
    shown->TakeOverlay(overlay);
    DrawShown();
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
    // X stands for right Ctrl, which many keyboards lack: the game's key is down as long as one of the two is.
    keysHeld[std::string_view(place) == "KeyX"][scanCode] = down != 0;
    DeviceKey(KeySource::Keyboard, scanCode, keysHeld[0][scanCode] || keysHeld[1][scanCode]);
}

EMSCRIPTEN_KEEPALIVE void PageMouse(int x, int y, int wheel) {
    DeviceMouseMotion(x, y, wheel);
}

EMSCRIPTEN_KEEPALIVE void PageMouseButton(int button, int down) {
    DeviceMouseButton(KeySource::Keyboard, button, down != 0);
}

EMSCRIPTEN_KEEPALIVE void PageFocus(int gained) {
    for (auto& held : keysHeld)
        held.reset();
    DeviceFocus(gained != 0);
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
    .start = [](const Options&) { return true; },
    .stop = [] { pagePlayTrack(nullptr, 0, 0); },
    .milliseconds = Milliseconds,
    .beforeKeyboardPoll = BeforeKeyboardPoll,
    .pump = Pump,
    .wait = Wait,
    .createWindow = CreateGameWindow,
    .desktopSize = DesktopSize,
    .present = Present,
    .presentTexture = PresentTexture,
    .showOverlay = ShowOverlayPicture,
    .applySettings = nullptr,
    .keyLabel = nullptr,
    .setMouseCaptured = [](bool captured) { pageCapturePointer(captured); },
    .bringFile = pageBringFile,
    .messageBox = ShowMessage,
    .hasWindow = [] { return opened; },
    .refreshRate = nullptr,
    .windowSize = nullptr,
    .openSound = [](std::string&) { return true; },
    .playSound = PlaySound,
    .closeSound = [] { pagePlayTrack(nullptr, 0, 0); },
};
