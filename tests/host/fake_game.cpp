#include "host/fake_game.h"

#include "host/ddraw.h"
#include "host/dinput.h"
#include "host/probe.h"

#include <cstdio>
#include <cstring>

namespace {

HWND window;
IDirectInputDeviceA* keyboard;
IDirectInputDeviceA* mouse;
uint8_t keys[256];
uint8_t keysBefore[256];
DIMOUSESTATE mouseState;
IDirectDraw* directDraw;
IDirectDrawSurface* primary;
bool active = true;
int level;

LRESULT Procedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_ACTIVATEAPP) active = wParam != 0;
    return 0;
}

IDirectInputDeviceA* OpenDevice(IDirectInputA* input, HostDeviceGuid guid, const DIDATAFORMAT& format) {
    IDirectInputDeviceA* device = nullptr;
    input->CreateDevice(guid, &device, nullptr);
    device->SetDataFormat(&format);
    device->SetCooperativeLevel(window, DISCL_FOREGROUND);
    return device;
}

void PollKeys() {
    std::memcpy(keysBefore, keys, sizeof keys);
    keyboard->Acquire();
    keyboard->GetDeviceState(sizeof keys, keys);
}

void Poll() {
    PollKeys();
    mouse->Acquire();
    mouse->GetDeviceState(sizeof mouseState, &mouseState);
}

bool Hit(uint8_t code) {
    return keys[code] && !keysBefore[code];
}

void OpenDisplay(DWORD width, DWORD height, DWORD bits) {
    DirectDrawCreate(nullptr, &directDraw, nullptr);
    directDraw->SetDisplayMode(width, height, bits);
    DDSURFACEDESC description{};
    description.dwSize = sizeof description;
    description.ddsCaps.dwCaps = DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
    description.dwBackBufferCount = 1;
    directDraw->CreateSurface(&description, &primary, nullptr);
}

void CloseDisplay() {
    primary->Release();
    directDraw->Release();
}

void Show(DWORD colour) {
    const DDSCAPS caps{DDSCAPS_BACKBUFFER};
    IDirectDrawSurface* back = nullptr;
    primary->GetAttachedSurface(&caps, &back);
    const DDBLTFX effects{sizeof effects, colour};
    back->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, &effects);
    primary->Flip(nullptr, DDFLIP_WAIT);
}

// One message, or a look at the input. False: there was a message, or the game is to wait.
bool Idle() {
    MSG message;
    if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageA(&message);
        return false;
    }
    if (!active) {
        WaitMessage();
        return false;
    }
    Poll();
    return true;
}

// True: Space. False: the program is to end.
bool Attract() {
    Poll();
    Show(1);
    for (;;) {
        if (!Idle()) continue;
        if (keys[DIK_SPACE]) return true;
        if (Hit(DIK_LWIN) || Hit(DIK_ESCAPE)) return false;
        GetTickCount();
    }
}

// Keys without messages, until `chosen` says so.
template <typename Condition>
void Choose(DWORD picture, Condition chosen) {
    Show(0);
    Show(picture);
    do
        PollKeys();
    while (!chosen());
}

void ChooseLevel() {
    constexpr uint8_t CODES[] = {DIK_F1, DIK_F2, DIK_F3, DIK_F4, DIK_F5, DIK_F6, DIK_F7, DIK_F12};
    level = 0;
    Choose(2, [&] {
        for (int i = 0; i < 8; ++i)
            if (keys[CODES[i]]) level = i + 1;
        return level != 0;
    });
    Choose(3, [] { return Hit(DIK_F11) || Hit(DIK_F12); });
    std::printf("level %d %s\n", level, Hit(DIK_F11) ? "software" : "accelerator");
    Show(0);
}

bool FrontEnd() {
    OpenDisplay(640, 480, 16);
    const bool start = Attract();
    if (start) ChooseLevel();
    CloseDisplay();
    return start;
}

// True: the program goes on.
bool PlayLevel() {
    OpenDisplay(320, 240, 8);
    static uint32_t frame = 0;
    bool ended = false;
    for (DWORD before = GetTickCount(); !ended && !Hit(DIK_LWIN) && !keys[DIK_ESCAPE];) {
        if (!Idle()) continue;
        Show(++frame);
        DWORD now = GetTickCount();
        while (now - before < (level == 8 ? 1600u : 16u))
            now = GetTickCount();
        HostFrameReport report{};
        report.ticks = now - before;
        report.level = level;
        report.state = (keys[DIK_UP] ? 1 : 0) | (keys[DIK_SPACE] ? 2 : 0) | (mouseState.rgbButtons[0] ? 4 : 0);
        report.contact = mouseState.lX;
        report.extra[0] = {&frame, sizeof frame};
        before = now;
        ended = HostEndOfFrame(report);
    }
    ended = ended || keys[DIK_LWIN];
    CloseDisplay();
    return !ended;
}

}  // namespace

int FakeGame(HINSTANCE instance, HINSTANCE, char*, int) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.lpszClassName = "Fake";
    RegisterClassA(&windowClass);
    window = CreateWindowExA(0, "Fake", "Fake", 0, 0, 0, 640, 480, nullptr, nullptr, instance, nullptr);
    IDirectInputA* input = nullptr;
    DirectInputCreateA(instance, DIRECTINPUT_VERSION, &input, nullptr);
    keyboard = OpenDevice(input, GUID_SysKeyboard, c_dfDIKeyboard);
    mouse = OpenDevice(input, GUID_SysMouse, c_dfDIMouse);
    while (FrontEnd() && PlayLevel()) {
    }
    mouse->Release();
    keyboard->Release();
    input->Release();
    return 3;
}
