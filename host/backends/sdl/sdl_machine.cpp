#include "backends/sdl/sdl_machine.h"

#include "backends/sdl/keys.h"
#include "backends/sdl/pads.h"
#include "backends/sdl/sound.h"
#include "backends/sdl/window.h"
#include "input/devices.h"

#include <SDL.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr auto KEYBOARD_NAP = 2ms;   // sleep of a loop that polls the keyboard until a key is down
constexpr auto FRONT_END_NAP = 8ms;  // sleep of each poll before a level, where nothing moves
constexpr int WAIT_MS = 20;          // length of one turn of a wait: how late a controller may be heard
constexpr int UNSEEN_WAIT_MS = 100;  // the same without the focus, where only the keyboard and the mouse end a wait

const auto startTime = std::chrono::steady_clock::now();
Options startOptions;
uint32_t lastClock = 0, lastKeyboardPoll = 0, lastTurn = 0;

// SDL's drivers that show nothing are taken only when SDL_VIDEODRIVER asks for them; SDL itself also falls back to
// them, and a game would run unseen.
bool DriverUsable() {
    return !DisplayIsUnseen() || (SDL_GetCurrentVideoDriver() && SDL_getenv("SDL_VIDEODRIVER"));
}

void Stop() {
    CloseSound();
    StopPads();
    CloseGameWindow();
    SDL_Quit();
}

bool Start(const Options& options) {
    startOptions = options;
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");  // machine/process.h has its own
    SDL_SetHint(SDL_HINT_VIDEO_MINIMIZE_ON_FOCUS_LOSS, "0");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0 || !DriverUsable()) {
        SDL_Quit();
        return false;
    }
    StartPads();
    return true;
}

// A loop that reads the clock until it moves sleeps until it does.
uint32_t Milliseconds() {
    const auto clock = [] { return std::chrono::steady_clock::now() - startTime; };
    const auto milliseconds = [](auto time) {
        return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
    };
    auto now = clock();
    if (milliseconds(now) == lastClock) {
        std::this_thread::sleep_for(1ms - now % 1ms);
        now = clock();
    }
    lastClock = milliseconds(now);
    return lastClock;
}

void Pump() {
    PumpWindowEvents();
    const uint32_t now = SDL_GetTicks();
    TurnWithPads(now - lastTurn);
    lastTurn = now;
}

void BeforeKeyboardPoll() {
    if (DeviceMouseUse() == MouseUse::None)
        std::this_thread::sleep_for(FRONT_END_NAP);
    else if (SDL_GetTicks() == lastKeyboardPoll)
        std::this_thread::sleep_for(KEYBOARD_NAP);
    lastKeyboardPoll = SDL_GetTicks();
    Pump();
}

// SDL would look at controllers every millisecond meanwhile.
void Wait() {
    SDL_SetHint(SDL_HINT_AUTO_UPDATE_JOYSTICKS, "0");
    SDL_WaitEventTimeout(nullptr, HasFocus() ? WAIT_MS : UNSEEN_WAIT_MS);
    SDL_SetHint(SDL_HINT_AUTO_UPDATE_JOYSTICKS, "1");
    SDL_GameControllerUpdate();
    Pump();
}

bool CreateGameWindow(const char* title) {
    return OpenGameWindow(title, startOptions);
}

void DesktopSize(int* width, int* height) {
    SDL_DisplayMode mode{};
    if (SDL_GetDesktopDisplayMode(0, &mode) != 0) mode.w = 640, mode.h = 480;
    *width = mode.w;
    *height = mode.h;
}

int DisplayCount() {
    return SDL_GetNumVideoDisplays();
}

int MessageBox(const char* text, const char* caption) {
    // Without a display SDL looks for a dialog program, and may wait for it without end.
    if (DisplayIsUnseen()) {
        std::fprintf(stderr, "%s: %s\n", caption, text);
    } else {
        ShowMessageBox(text, caption);
    }
    return 1;
}

}  // namespace

const Machine SdlMachine = {
    .name = "sdl",
    .start = Start,
    .stop = Stop,
    .milliseconds = Milliseconds,
    .sleep = nullptr,
    .beforeKeyboardPoll = BeforeKeyboardPoll,
    .pump = Pump,
    .wait = Wait,
    .createWindow = CreateGameWindow,
    .desktopSize = DesktopSize,
    .present = ShowPicture,
    .presentTexture = ShowTexture,
    .showOverlay = ShowOverlayPicture,
    .applySettings = ApplySettings,
    .keyLabel = KeyLabel,
    .setMouseCaptured = CapturePointer,
    .bringFile = nullptr,
    .keepFile = nullptr,
    .messageBox = MessageBox,
    .hasWindow = GameWindowOpen,
    .refreshRate = GameWindowRate,
    .windowSize = GameWindowSize,
    .displays = DisplayCount,
    .openSound = OpenSound,
    .playSound = PlayTrack,
    .closeSound = CloseSound,
};
