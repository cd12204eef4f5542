#include "window/desktop.h"

#include <gtest/gtest.h>  // before the macros of Xlib

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

constexpr int KEY_HELD_MS = 150;   // longer than a frame of the slowest levels, which play 15 a second
constexpr int WAIT_SECONDS = 600;  // a limit against hanging only
const char* const TITLE = "Tarnwick";

pid_t Spawn(const std::vector<std::string>& command, const std::string& outputFile, int keptOpen) {
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    const int output = open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(output, STDOUT_FILENO);
    if (keptOpen >= 0) fcntl(keptOpen, F_SETFD, 0);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

void End(pid_t& process) {
    if (process <= 0) return;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
    process = -1;
}

// The server chooses a free display number itself and writes it into the pipe.
std::string StartServer(pid_t& server) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const std::string size = std::to_string(Desktop::WIDTH) + "x" + std::to_string(Desktop::HEIGHT) + "x24";
    server = Spawn({"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", size, "-nolisten", "tcp"},
                   "/dev/null", ends[1]);
    close(ends[1]);
    std::string number;
    for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';)
        number += digit;
    close(ends[0]);
    return ":" + number;
}

Window FindWindow(Display* display, Window parent) {
    Window root = 0, above = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, parent, &root, &above, &children, &count)) return 0;
    Window found = 0;
    for (unsigned i = 0; i < count && !found; ++i) {
        char* name = nullptr;
        if (XFetchName(display, children[i], &name) && std::strcmp(name, TITLE) == 0) found = children[i];
        if (name) XFree(name);
        if (!found) found = FindWindow(display, children[i]);  // a window manager puts it into one of its own
    }
    if (children) XFree(children);
    return found;
}

// The window may be gone before a request about it arrives; that is no reason to end the test.
int IgnoreError(Display*, XErrorEvent*) {
    return 0;
}

}  // namespace

bool ScreenPicture::Black(int left, int top, int right, int bottom) const {
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
            if (pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)] != 0) return false;
    return true;
}

bool Desktop::Has(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

Desktop::Desktop() {
    displayName = StartServer(server);
    setenv("DISPLAY", displayName.c_str(), 1);
    display = XOpenDisplay(displayName.c_str());
    XSetErrorHandler(IgnoreError);
    EXPECT_TRUE(display) << displayName;
}

Desktop::~Desktop() {
    End(game);
    End(manager);
    if (display) XCloseDisplay(display);
    End(server);
}

void Desktop::StartWayland() {
    const std::string folder = testing::TempDir(), settings = folder + "/weston.ini";
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    std::ofstream(settings) << "[core]\nidle-time=0\n[shell]\npanel-position=none\nanimation=none\n";
    manager = Spawn({"weston", "--backend=x11-backend.so", "--use-pixman", "--socket=wayland", "--config=" + settings,
                     "--width=" + std::to_string(WIDTH), "--height=" + std::to_string(HEIGHT),
                     "--log=" + folder + "/weston.log"},
                    "/dev/null", -1);
    onWayland = WaitFor([&] { return std::filesystem::exists(folder + "/wayland"); });
    ASSERT_TRUE(onWayland);
}

void Desktop::StartManager() {
    manager = Spawn({"openbox", "--config-file", "/etc/xdg/openbox/rc.xml"}, "/dev/null", -1);
    const Atom name = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    ASSERT_TRUE(WaitFor([&] {
        Atom type = 0;
        int format = 0;
        unsigned long count = 0, rest = 0;
        unsigned char* value = nullptr;
        XGetWindowProperty(display, DefaultRootWindow(display), name, 0, 1, False, AnyPropertyType, &type, &format,
                           &count, &rest, &value);
        if (value) XFree(value);
        return count > 0;
    }));
}

void Desktop::StartGame(const std::vector<std::string>& options) {
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // the display drivers keep memory to the end
    std::filesystem::remove(TraceFile());
    setenv("XDG_CONFIG_HOME", testing::TempDir().c_str(), 1);  // keeps away from the settings of whoever runs the test
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    if (onWayland) setenv("WAYLAND_DISPLAY", "wayland", 1);
    if (onWayland) setenv("SDL_VIDEODRIVER", "wayland", 1);
    std::vector<std::string> command = {BUILD_FOLDER "/tarnwick", "--verbose", "--trace", TraceFile()};
    command.insert(command.end(), options.begin(), options.end());
    game = Spawn(command, OutputFile(), -1);
    if (onWayland) return;  // where nobody sees another's windows
    ASSERT_TRUE(WaitFor([&] { return GameWindow() != 0 || !GameRuns(); }));
    ASSERT_TRUE(GameRuns());
    GiveFocus();
    ASSERT_TRUE(WaitFor([&] { return !Screen().Black(0, 0, WIDTH, HEIGHT); })) << "nothing is shown";
}

bool Desktop::GameRuns() {
    siginfo_t state{};
    return waitid(P_PID, static_cast<id_t>(game), &state, WEXITED | WNOHANG | WNOWAIT) == 0 && state.si_pid == 0;
}

int Desktop::GameStatus() {
    if (!WaitFor([&] { return !GameRuns(); })) return -1;
    int status = 0;
    waitpid(game, &status, 0);
    game = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string Desktop::OutputFile() const {
    return testing::TempDir() + "/output";
}

std::string Desktop::TraceFile() const {
    return testing::TempDir() + "/trace";
}

size_t Desktop::TracedFrames() const {
    std::ifstream trace(TraceFile());
    return static_cast<size_t>(std::count(std::istreambuf_iterator<char>(trace), {}, '\n'));
}

void Desktop::ChooseFirstLevel() {
    // Each screen ignores the keys of the others, so all may be pressed until the level has begun.
    ASSERT_TRUE(WaitFor([&] {
        for (const char* key : {"space", "F1", "F11"})
            Key(key);
        return TracedFrames() > 0;
    }));
}

void Desktop::Key(const std::string& key) {
    Input("keydown " + key);
    Rest(KEY_HELD_MS);
    Input("keyup " + key);
    Rest(KEY_HELD_MS);
}

void Desktop::Input(const std::string& xdotoolCommand) {
    EXPECT_EQ(std::system(("DISPLAY=" + displayName + " xdotool " + xdotoolCommand).c_str()), 0) << xdotoolCommand;
}

void Desktop::TakeFocus() {
    if (!otherWindow) {
        otherWindow = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 8, 8, 0, 0, 0);
        XMapWindow(display, otherWindow);
        XSync(display, False);
    }
    XSetInputFocus(display, otherWindow, RevertToParent, CurrentTime);
    XSync(display, False);
}

void Desktop::GiveFocus() {
    XSetInputFocus(display, GameWindow(), RevertToParent, CurrentTime);
    XSync(display, False);
}

void Desktop::ResizeGame(int width, int height) {
    XMoveResizeWindow(display, GameWindow(), 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display, False);
}

std::array<int, 4> Desktop::GamePlace() {
    XWindowAttributes attributes{};
    Window child = 0;
    std::array<int, 4> place{};
    if (!XGetWindowAttributes(display, GameWindow(), &attributes)) return place;
    XTranslateCoordinates(display, GameWindow(), DefaultRootWindow(display), 0, 0, &place[0], &place[1], &child);
    place[2] = attributes.width, place[3] = attributes.height;
    return place;
}

std::string Desktop::GameProcess() const {
    return "/proc/" + std::to_string(game) + "/";
}

bool Desktop::PointerHeld() {
    const int result =
        XGrabPointer(display, DefaultRootWindow(display), False, 0, GrabModeAsync, GrabModeAsync, 0, 0, CurrentTime);
    XUngrabPointer(display, CurrentTime);
    XSync(display, False);
    return result != GrabSuccess;
}

void Desktop::PressCloseButton() {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = GameWindow();
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XSync(display, False);
}

void Desktop::PressAltF4() {
    const int f4 = XKeysymToKeycode(display, XK_F4);
    XGrabKey(display, f4, AnyModifier, DefaultRootWindow(display), False, GrabModeAsync, GrabModeAsync);
    XSync(display, False);
    Input("keydown alt keydown F4");
    PressCloseButton();
    Input("keyup F4 keyup alt");
    XUngrabKey(display, f4, AnyModifier, DefaultRootWindow(display));
}

ScreenPicture Desktop::Screen() {
    ScreenPicture picture{WIDTH, HEIGHT, {}};
    XImage* image = XGetImage(display, DefaultRootWindow(display), 0, 0, WIDTH, HEIGHT, AllPlanes, ZPixmap);
    if (!image) return {};
    picture.pixels.reserve(size_t{WIDTH} * HEIGHT);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x)
            picture.pixels.push_back(static_cast<uint32_t>(XGetPixel(image, x, y) & 0xFFFFFF));
    XDestroyImage(image);
    return picture;
}

unsigned long Desktop::GameWindow() {
    XSync(display, False);
    return FindWindow(display, DefaultRootWindow(display));
}

bool WaitFor(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(WAIT_SECONDS);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        Rest(50);
    }
    return true;
}

void Rest(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
