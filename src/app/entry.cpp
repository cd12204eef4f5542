#include "app/entry.h"

#include "app/error_box.h"
#include "app/front_end.h"
#include "app/game_loop.h"
#include "platform/cd_audio.h"
#include "platform/display.h"
#include "platform/input.h"

namespace {

constexpr int ICON_RESOURCE = 101;

bool RegisterMainClass() {
    WNDCLASSA windowClass{};
    windowClass.style = CS_NOCLOSE;
    windowClass.lpfnWndProc = MainWndProc;
    windowClass.hInstance = AppInstance;
    windowClass.hIcon = LoadIconA(AppInstance, ICON_RESOURCE);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = GetStockObject(BLACK_BRUSH);
    windowClass.lpszMenuName = "MainMenu";
    windowClass.lpszClassName = APP_TITLE;
    return RegisterClassA(&windowClass) != 0;
}

bool CreateMainWindow(int showCommand) {
    MainWindow = CreateWindowExA(WS_EX_TOPMOST, APP_TITLE, APP_TITLE, WS_POPUP | WS_BORDER | WS_SYSMENU, 0, 0,
                                 GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN), nullptr, nullptr,
                                 AppInstance, nullptr);
    if (MainWindow == nullptr) return false;
    ShowWindow(MainWindow, showCommand);
    return true;
}

bool SetUpApplication(HINSTANCE instance, HINSTANCE previousInstance, int showCommand) {
    AppInstance = instance;
    if (previousInstance == nullptr && !RegisterMainClass()) return false;
    return CreateMainWindow(showCommand);
}

// The front end returns the mode it found only when it could not open its display; otherwise it has set one of these.
bool FrontEndWasShown(uint8_t mode) {
    return mode == MODE_FRONTEND || mode == MODE_START || mode == MODE_QUIT;
}

void AlternateFrontEndAndGame() {
    uint8_t frontEndMode = RunFrontEnd();
    while (GameMode != MODE_QUIT) {
        const uint8_t gameMode = RunGame();
        if (gameMode == MODE_QUIT) return;
        // Neither the front end nor the game could open a display: going on would show message boxes without end.
        if (gameMode == MODE_PLAYING && !FrontEndWasShown(frontEndMode)) return;
        frontEndMode = RunFrontEnd();
    }
}

}  // namespace

int WinMain(HINSTANCE instance, HINSTANCE previousInstance, char*, int showCommand) {
    if (!SetUpApplication(instance, previousInstance, showCommand)) {
        ErrorBox("Unable to initialise application.", MB_OK);
        return 0;
    }
    UpdateWindow(MainWindow);
    if (!StartInput(AppInstance, MainWindow, Input)) {
        ErrorBox("Unable to initialise DirectInput.", MB_OK);
        return 0;
    }
    AlternateFrontEndAndGame();
    StopInput(Input);
    return 0;
}

LRESULT MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_ACTIVATEAPP: AppActive = wParam != 0 ? 1 : 0; return 0;
    case WM_DESTROY: PostQuitMessage(0); return 0;
    case WM_DISPLAYCHANGE: SetWindowPos(window, nullptr, 0, 0, LOWORD(lParam), HIWORD(lParam), SWP_NOZORDER); return 0;
    case WM_SYSKEYDOWN:
        // These messages never reach DefWindowProc, so that no Alt combination closes or switches the window.
        if (wParam == VK_TAB && Display.directDraw != nullptr) Display.directDraw->FlipToGDISurface();
        return 0;
    case MM_MCINOTIFY: PlayCdTrack(MainWindow); return 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
    }
}
