#include "core/messages.h"

#include "core/cd_drive.h"
#include "core/clock.h"
#include "core/devices.h"
#include "core/display.h"
#include "core/machine.h"
#include "core/recorder.h"
#include "core/replay.h"
#include "core/run.h"

#include <deque>
#include <map>
#include <memory>
#include <string>

struct HostWindow {
    WNDPROC procedure;
    int width, height;
};

namespace {

std::map<std::string, WNDCLASSA, std::less<>> classes;
std::unique_ptr<HostWindow> mainWindow;
std::deque<MSG> queue;
bool quitPosted = false;
int quitCode = 0;
uint32_t arrivals = 0;        // messages that ever came
uint32_t arrivalsAtPeek = 0;  // of them, those already there at the last peek
int cursorCount = 0;

// What the game only passes on: any address that is not null will do.
int resourceToken = 0;

bool TakeMessage(MSG& message, bool remove) {
    if (!queue.empty()) {
        message = queue.front();
        if (remove) queue.pop_front();
        return true;
    }
    if (!quitPosted) return false;
    message = {nullptr, WM_QUIT, static_cast<WPARAM>(quitCode), 0};
    if (remove) quitPosted = false;
    return true;
}

}  // namespace

void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam) {
    if (!mainWindow || Replaying()) return;
    queue.push_back({mainWindow.get(), message, wParam, lParam});
    ++arrivals;
}

void ResetMessages() {
    classes.clear();
    mainWindow.reset();
    queue.clear();
    quitPosted = false;
    arrivals = arrivalsAtPeek = 0;
    cursorCount = 0;
}

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    if (!windowClass->lpszClassName || !windowClass->lpfnWndProc) return 0;
    if (!classes.emplace(windowClass->lpszClassName, *windowClass).second) return 0;
    return static_cast<ATOM>(0xC000 + classes.size());
}

HWND CreateWindowExA(DWORD, const char* className, const char* title, DWORD, int, int, int width, int height, HWND,
                     void*, HINSTANCE, void*) {
    const auto found = classes.find(className);
    if (found == classes.end() || mainWindow || !CurrentMachine->createWindow(title)) return nullptr;
    mainWindow = std::make_unique<HostWindow>(HostWindow{found->second.lpfnWndProc, width, height});
    return mainWindow.get();
}

BOOL ShowWindow(HWND window, int) {
    return window ? TRUE : FALSE;
}

BOOL UpdateWindow(HWND window) {
    return window ? TRUE : FALSE;
}

BOOL SetWindowPos(HWND window, HWND, int, int, int width, int height, UINT) {
    if (!window) return FALSE;
    window->width = width;
    window->height = height;
    return TRUE;
}

HWND GetActiveWindow() {
    return mainWindow.get();
}

HICON LoadIconA(HINSTANCE, int) {
    return &resourceToken;
}

HCURSOR LoadCursorA(HINSTANCE, int) {
    return &resourceToken;
}

HGDIOBJ GetStockObject(int) {
    return &resourceToken;
}

int GetSystemMetrics(int index) {
    const ScreenMode mode = CurrentScreenMode();
    if (index == SM_CXSCREEN) return static_cast<int>(mode.width);
    if (index == SM_CYSCREEN) return static_cast<int>(mode.height);
    return 0;
}

int ShowCursor(BOOL show) {
    return cursorCount += show ? 1 : -1;
}

int MessageBoxA(HWND, const char* text, const char* caption, UINT) {
    CurrentMachine->setMouseCaptured(false);
    const int button = CurrentMachine->messageBox(text, caption);
    CurrentMachine->setMouseCaptured(DeviceMouseWanted());
    return button;
}

BOOL PeekMessageA(MSG* message, HWND, UINT, UINT, UINT remove) {
    AtPeek();
    CurrentMachine->pump();
    TurnCdDrive();
    arrivalsAtPeek = arrivals;
    if (Replaying()) {
        message->hwnd = mainWindow.get();
        return ReplayMessage(*message);
    }
    const bool found = TakeMessage(*message, remove & PM_REMOVE);
    RecordMessage(found ? message : nullptr);
    return found;
}

BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* message) {
    return message->hwnd ? message->hwnd->procedure(message->hwnd, message->message, message->wParam, message->lParam)
                         : 0;
}

LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

BOOL WaitMessage() {
    if (Replaying()) return TRUE;
    CurrentMachine->pump();
    while (arrivals == arrivalsAtPeek) {
        ReadClock();
        AtWait();
        TurnCdDrive();
        if (arrivals != arrivalsAtPeek) break;
        CurrentMachine->wait();
        CurrentMachine->pump();
    }
    return TRUE;
}

void PostQuitMessage(int exitCode) {
    quitPosted = true;
    quitCode = exitCode;
    ++arrivals;
}
