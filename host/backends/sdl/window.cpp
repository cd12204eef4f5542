#include "backends/sdl/window.h"

#include "backends/sdl/keys.h"
#include "backends/sdl/pads.h"
#include "backends/sdl/presenter.h"
#include "backends/sdl/sound.h"
#include "boards/gpu/gl_context.h"
#include "host/files.h"
#include "input/devices.h"
#include "input/key_bindings.h"
#include "machine/png.h"
#include "machine/settings.h"
#include "machine/window_place.h"

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>

namespace {

constexpr int WIDTH_MIN = 320, HEIGHT_MIN = 240;
constexpr int WHEEL_NOTCH = 120;
constexpr uint32_t ALT_F4_MS = 250;  // from the release of Alt to a close request that it made

SDL_Window* window = nullptr;
std::unique_ptr<Presenter> presenter;

// Until focus is lost for the first time the window counts as focused: the event that says so comes some time after
// the window is shown, and never on displays without a window manager's help.
bool focused = true;
bool pointerWanted = false;
bool minimised = false;
bool placeRemembered = false;
int displayChosen = -1;  // that the window was last put on; -1: none
int sizeChosen = -1;     // the setting that the window's size is of; -1: it has only been on the whole screen
bool pointerHeld = false;
bool pointerLetGo = false;  // by its key, until it or a mouse button is pressed

std::bitset<SDL_NUM_SCANCODES> keysHeld;
uint32_t buttonsHeld = 0;             // SDL_BUTTON masks
std::optional<uint32_t> altReleased;  // when Alt was last released, in ms of SDL's clock

bool AltHeld() {
    return keysHeld[SDL_SCANCODE_LALT] || keysHeld[SDL_SCANCODE_RALT];
}

bool InFullScreen() {
    return (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN) != 0;
}

// Elsewhere the pointer can reach the title bar and the other windows. While Alt is held the window manager may want
// it.
bool MouseSteers() {
    if (pointerLetGo || AltHeld()) return false;
    switch (DeviceMouseUse()) {
    case MouseUse::None: return false;
    case MouseUse::WithButton: return buttonsHeld != 0 || InFullScreen();
    case MouseUse::Always: return true;
    }
    return false;
}

void ShowPointer(bool show) {
    if ((SDL_ShowCursor(SDL_QUERY) == SDL_ENABLE) != show) SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
}

void UpdatePointer() {
    const bool mine = window && focused && pointerWanted;
    ShowPointer(!mine || !InFullScreen() || pointerLetGo || AltHeld());
    const bool hold = mine && MouseSteers();
    if (hold == pointerHeld) return;
    pointerHeld = hold;
    SDL_SetRelativeMouseMode(hold ? SDL_TRUE : SDL_FALSE);
    SDL_FlushEvent(SDL_MOUSEMOTION);  // how the pointer moved before the switch is no motion for the game
}

void UpdateSound() {
    SetSoundVolume(SettingValue(Setting::Volume));
    PauseSound(minimised || (!focused && SettingValue(Setting::MusicStops) != 0));
}

void ChangeFocus(bool gained) {
    if (focused == gained) return;
    focused = gained;
    if (!gained) {
        keysHeld.reset();
        buttonsHeld = 0;
    }
    UpdatePointer();
    UpdateSound();
    DeviceFocus(gained);
}

// The edges that the desktop puts around the window: 0 where it has none, or does not tell.
SDL_Point FrameCorner() {
    SDL_Point corner{};
    SDL_GetWindowBordersSize(window, &corner.y, &corner.x, nullptr, nullptr);
    return corner;
}

// Only of the plain window: on the whole screen and enlarged it is where the desktop has put it.
void RememberWindow() {
    constexpr uint32_t ELSEWHERE = SDL_WINDOW_FULLSCREEN_DESKTOP | SDL_WINDOW_MAXIMIZED | SDL_WINDOW_MINIMIZED;
    if (!window || !placeRemembered || (SDL_GetWindowFlags(window) & ELSEWHERE) != 0) return;
    SDL_Rect display{};
    WindowPlace place{};
    SDL_GetWindowPosition(window, &place.x, &place.y);
    SDL_GetWindowSize(window, &place.width, &place.height);
    place.x -= FrameCorner().x;
    place.y -= FrameCorner().y;
    const bool fills = SDL_GetDisplayBounds(SDL_GetWindowDisplayIndex(window), &display) == 0 &&
                       place.width >= display.w && place.height >= display.h;  // about to leave the whole screen
    if (!fills) RememberPlace(place);
}

void HandleWindowEvent(const SDL_WindowEvent& event) {
    switch (event.event) {
    case SDL_WINDOWEVENT_FOCUS_GAINED: ChangeFocus(true); break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        if (!DisplayIsUnseen()) ChangeFocus(false);  // on an unseen display the focus could never come back
        break;
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_RESTORED:
        minimised = event.event == SDL_WINDOWEVENT_MINIMIZED;
        UpdateSound();
        break;
    case SDL_WINDOWEVENT_MOVED: RememberWindow(); break;
    case SDL_WINDOWEVENT_SIZE_CHANGED: RememberWindow(); [[fallthrough]];
    case SDL_WINDOWEVENT_EXPOSED:
        if (presenter) presenter->ShowAgain();
        break;
    default: break;
    }
}

// Several keys may stand for one of the game's, as X and right Ctrl do: it stays down until all of them are up.
bool AnyKeyHeld(uint8_t scanCode) {
    for (int key = 0; key < SDL_NUM_SCANCODES; ++key)
        if (keysHeld[static_cast<size_t>(key)] && ScanCodeOf(static_cast<SDL_Scancode>(key)) == scanCode) return true;
    return false;
}

bool IsAlt(SDL_Scancode key) {
    return key == SDL_SCANCODE_LALT || key == SDL_SCANCODE_RALT;
}

void HandleKey(const SDL_KeyboardEvent& event) {
    const SDL_Scancode key = event.keysym.scancode;
    const uint8_t scanCode = ScanCodeOf(key);
    if (scanCode == 0 || event.repeat != 0) return;
    if (key == SDL_SCANCODE_RETURN && event.state == SDL_PRESSED && AltHeld()) {
        if (SettingValue(Setting::FullScreen) == (InFullScreen() ? 1 : 0)) StepSetting(Setting::FullScreen, 1);
        ApplySettings();
        return;
    }
    keysHeld[key] = event.state == SDL_PRESSED;
    if (event.state == SDL_PRESSED && KeyMeanings()[scanCode] == KEY_CODE_FREE_POINTER) pointerLetGo = !pointerLetGo;
    if (IsAlt(key) && event.state == SDL_RELEASED) altReleased = event.timestamp;
    DeviceKey(KeySource::Keyboard, scanCode, AnyKeyHeld(scanCode));
}

// Alt is a key of the game, so Alt+F4 must not end it. A window manager keeps F4 to itself and sends a close request;
// all that shows here is that Alt is held, or was until a moment before. The window's close button is not pressed with
// Alt held.
void HandleCloseRequest(uint32_t time) {
    if (AltHeld() || (altReleased && time - *altReleased <= ALT_F4_MS)) return;
    DeviceCloseRequest();
}

void HandleMouseButton(const SDL_MouseButtonEvent& event) {
    const uint32_t mask = SDL_BUTTON(event.button);
    buttonsHeld = event.state == SDL_PRESSED ? buttonsHeld | mask : buttonsHeld & ~mask;
    if (event.state == SDL_PRESSED) pointerLetGo = false;
    UpdatePointer();  // now, so that the motion after the press counts
    constexpr uint8_t BUTTONS[] = {SDL_BUTTON_LEFT, SDL_BUTTON_RIGHT, SDL_BUTTON_MIDDLE};
    for (size_t button = 0; button < std::size(BUTTONS); ++button)
        if (event.button == BUTTONS[button])
            DeviceMouseButton(KeySource::Keyboard, static_cast<int>(button), event.state == SDL_PRESSED);
}

void HandleEvent(const SDL_Event& event) {
    switch (event.type) {
    case SDL_QUIT: HandleCloseRequest(event.quit.timestamp); break;
    case SDL_WINDOWEVENT: HandleWindowEvent(event.window); break;
    case SDL_KEYDOWN:
    case SDL_KEYUP: HandleKey(event.key); break;
    case SDL_MOUSEMOTION:
        if (pointerHeld) DeviceHandMotion(event.motion.xrel, event.motion.yrel);
        break;
    case SDL_MOUSEWHEEL: DeviceMouseMotion(0, 0, event.wheel.y * WHEEL_NOTCH); break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: HandleMouseButton(event.button); break;
    default: HandlePadEvent(event); break;
    }
}

// Takes the icon from the data folder; without one the window shows the desktop's own.
void ShowIcon() {
    PngPixels icon = ReadPng(std::string(HostDataFolder()) + "/icon.png");
    if (icon.pixels.empty()) return;
    SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormatFrom(icon.pixels.data(), icon.width, icon.height, 32,
                                                              icon.width * 4, SDL_PIXELFORMAT_ARGB8888);
    if (!surface) return;
    SDL_SetWindowIcon(window, surface);
    SDL_FreeSurface(surface);
}

// -1: the player has chosen none, or it is gone.
int ChosenDisplay() {
    const int chosen = SettingValue(Setting::Display) - 1;
    return chosen < SDL_GetNumVideoDisplays() ? chosen : -1;
}

// Null: the window was nowhere yet, or its display is gone, or the player has chosen another.
std::optional<SDL_Rect> LatestPlace() {
    constexpr int SEEN_MIN = 100;  // pixels of it that must be on a display
    const std::optional<WindowPlace> place = placeRemembered ? RememberedPlace() : std::nullopt;
    if (!place) return {};
    const SDL_Rect area{place->x, place->y, place->width, place->height};
    for (int display = 0; display < SDL_GetNumVideoDisplays(); ++display) {
        SDL_Rect bounds{}, seen{};
        const bool mayBeHere = ChosenDisplay() < 0 || ChosenDisplay() == display;
        if (mayBeHere && SDL_GetDisplayBounds(display, &bounds) == 0 && SDL_IntersectRect(&area, &bounds, &seen) &&
            seen.w >= SEEN_MIN && seen.h >= SEEN_MIN)
            return area;
    }
    return {};
}

// The display that the user is at: the chosen one, else the one where the window was, else the one with the pointer.
int DisplayInUse() {
    if (ChosenDisplay() >= 0) return ChosenDisplay();
    SDL_Point at{};
    SDL_GetGlobalMouseState(&at.x, &at.y);
    if (const auto place = LatestPlace()) at = {place->x + place->w / 2, place->y + place->h / 2};
    return std::max(SDL_GetPointDisplayIndex(&at), 0);
}

SDL_Window* CreateWindow(const char* title, const Options& options, uint32_t flags) {
    placeRemembered = !options.windowGiven;
    const bool windowed = options.windowWidth > 0 && !options.fullscreen;
    // A full-screen window, too, is opened at its final size: without a window manager nothing enlarges it later.
    const int display = DisplayInUse();
    const auto centre = static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<uint32_t>(display)));
    SDL_Rect area{centre, centre, options.windowWidth, options.windowHeight};
    if (windowed) {
        area = LatestPlace().value_or(area);
    } else {
        SDL_Rect bounds{0, 0, WIDTH_MIN, HEIGHT_MIN};
        SDL_GetDisplayBounds(display, &bounds);
        area.w = bounds.w, area.h = bounds.h;
    }
    flags |= SDL_WINDOW_ALLOW_HIGHDPI;
    flags |= static_cast<uint32_t>(windowed ? SDL_WINDOW_RESIZABLE : SDL_WINDOW_FULLSCREEN_DESKTOP);
    SDL_Window* created = SDL_CreateWindow(title, area.x, area.y, area.w, area.h, flags);
    if (created) SDL_SetWindowMinimumSize(created, WIDTH_MIN, HEIGHT_MIN);
    return created;
}

}  // namespace

bool DisplayIsUnseen() {
    const char* driver = SDL_GetCurrentVideoDriver();
    return !driver || std::strcmp(driver, "offscreen") == 0 || std::strcmp(driver, "dummy") == 0;
}

namespace {

// OpenGL that the processor draws costs more than drawing into the window's own memory. Wayland's windows have none.
bool WantsGl(const Options& options) {
    const char* const driver = SDL_GetCurrentVideoDriver();
    return options.board == BoardChoice::Gpu || MayHaveGraphicsCard() ||
           (driver && std::strcmp(driver, "wayland") == 0);
}

bool OpenGlWindow(const char* title, const Options& options) {
    if (!WantsGl(options)) return false;
    AskForGlContext();
    window = CreateWindow(title, options, SDL_WINDOW_OPENGL);
    if (window) presenter = MakeGlPresenter(window);
    if (presenter) return true;
    if (options.verbose) std::fprintf(stderr, "no OpenGL 3.3 (%s): drawing without it\n", SDL_GetError());
    if (window) SDL_DestroyWindow(window);
    return false;
}

bool OpenPlainWindow(const char* title, const Options& options) {
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");  // SDL would take OpenGL after all
    window = CreateWindow(title, options, 0);
    if (window) presenter = MakeSurfacePresenter(window);
    if (!window) std::fprintf(stderr, "cannot open a window: %s\n", SDL_GetError());
    return window != nullptr;
}

}  // namespace

bool OpenGameWindow(const char* title, const Options& options) {
    if (!OpenGlWindow(title, options) && !OpenPlainWindow(title, options)) return false;
    SDL_StopTextInput();
    UpdateSound();
    displayChosen = ChosenDisplay();
    sizeChosen = InFullScreen() ? -1 : SettingValue(Setting::WindowSize);
    ShowIcon();
    UpdatePointer();
    return true;
}

void CloseGameWindow() {
    CapturePointer(false);
    presenter.reset();
    if (window) SDL_DestroyWindow(window);
    window = nullptr;
}

bool GameWindowOpen() {
    return window != nullptr;
}

void GameWindowSize(int* width, int* height) {
    SDL_GetWindowSizeInPixels(window, width, height);
}

int GameWindowRate() {
    SDL_DisplayMode mode{};
    const int display = window ? std::max(SDL_GetWindowDisplayIndex(window), 0) : 0;
    return SDL_GetCurrentDisplayMode(display, &mode) == 0 ? mode.refresh_rate : 0;
}

void ShowPicture(const Picture& picture) {
    if (presenter) presenter->Show(picture);
}

bool ShowTexture(uint32_t texture, int width, int height) {
    return presenter && presenter->ShowTexture(texture, width, height);
}

namespace {

// As large as the player has chosen, when that has changed, and on the display that the player has chosen.
void PlaceWindow(bool onAnotherDisplay) {
    const int choice = SettingValue(Setting::WindowSize);
    const WindowSizeChoice& size = WINDOW_SIZES[choice];
    SDL_SetWindowResizable(window, SDL_TRUE);
    const int display = onAnotherDisplay ? displayChosen : std::max(SDL_GetWindowDisplayIndex(window), 0);
    const auto centre = static_cast<int>(SDL_WINDOWPOS_CENTERED_DISPLAY(static_cast<uint32_t>(display)));
    SDL_Rect area{centre, centre, size.width, size.height};
    if (const auto place = LatestPlace(); place && sizeChosen < 0)
        area = {place->x + FrameCorner().x, place->y + FrameCorner().y, place->w, place->h};
    if (choice != sizeChosen) SDL_SetWindowSize(window, area.w, area.h);
    if (choice != sizeChosen || onAnotherDisplay) SDL_SetWindowPosition(window, area.x, area.y);
    sizeChosen = choice;
}

}  // namespace

void ShowOverlayPicture(const Picture* overlay) {
    if (!presenter) return;
    presenter->SetOverlay(overlay);
    presenter->ShowAgain();
}

void ApplySettings() {
    if (!window) return;
    const bool fullScreen = SettingValue(Setting::FullScreen) != 0;
    const bool moves = ChosenDisplay() >= 0 && ChosenDisplay() != displayChosen;
    displayChosen = ChosenDisplay();
    if (InFullScreen() && (moves || !fullScreen)) SDL_SetWindowFullscreen(window, 0);
    if (!fullScreen || moves) PlaceWindow(moves);
    if (fullScreen && !InFullScreen()) SDL_SetWindowFullscreen(window, SDL_WINDOW_FULLSCREEN_DESKTOP);
    UpdateSound();
    if (presenter) presenter->ShowAgain();
}

void CapturePointer(bool captured) {
    pointerWanted = captured;
    UpdatePointer();
}

void PumpWindowEvents() {
    for (SDL_Event event; SDL_PollEvent(&event);)
        HandleEvent(event);
    UpdatePointer();
}

void ShowMessageBox(const char* text, const char* caption) {
    const bool wanted = pointerWanted;
    CapturePointer(false);
    if (SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_ERROR, caption, text, window) != 0)
        std::fprintf(stderr, "%s: %s\n", caption, text);
    CapturePointer(wanted);
    if (presenter) presenter->ShowAgain();
}
