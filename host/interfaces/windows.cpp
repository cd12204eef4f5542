#include "interfaces/windows.h"

#include "host/win32.h"
#include "input/devices.h"
#include "input/message_queue.h"
#include "input/session_hooks.h"
#include "interfaces/cd_drive.h"
#include "interfaces/display.h"
#include "machine/clock.h"
#include "machine/machine.h"

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
int cursorCount = 0;

// Handles that the game only passes on point here: any address that is not null will do.
int resourceToken = 0;

}  // namespace

void ResetWindows() {
    classes.clear();
    mainWindow.reset();
    ResetQueue();
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
    OpenQueue(mainWindow.get());
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
    Session.atPeek();
    CurrentMachine->pump();
    TurnCdDrive();
    NoteLook();
    if (Session.replaying()) {
        message->hwnd = mainWindow.get();
        return Session.replayMessage(*message);
    }
    const bool found = TakeMessage(*message, remove & PM_REMOVE);
    Session.tookMessage(found ? message : nullptr);
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
    if (Session.replaying()) return TRUE;
    CurrentMachine->pump();
    while (!NewSinceLook()) {
        ReadClock();
        Session.atWait();
        TurnCdDrive();
        if (NewSinceLook()) break;
        CurrentMachine->wait();
        CurrentMachine->pump();
    }
    return TRUE;
}

void PostQuitMessage(int exitCode) {
    PostQuit(exitCode);
}
