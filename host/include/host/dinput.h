// DirectInput, version 5: the system keyboard and the system mouse, polled.
#pragma once

#include "host/win32.h"

constexpr DWORD DIRECTINPUT_VERSION = 0x0500;
constexpr HRESULT DI_OK = 0;
constexpr HRESULT DI_ALREADY_ACQUIRED = 1;  // a success
constexpr HRESULT DIERR_GENERIC = static_cast<HRESULT>(0x80004005);
constexpr HRESULT DIERR_OTHERAPPHASPRIO = static_cast<HRESULT>(0x80070005);
constexpr HRESULT DIERR_NOTACQUIRED = static_cast<HRESULT>(0x8007000C);
constexpr HRESULT DIERR_INPUTLOST = static_cast<HRESULT>(0x8007001E);

constexpr DWORD DISCL_EXCLUSIVE = 1;
constexpr DWORD DISCL_NONEXCLUSIVE = 2;
constexpr DWORD DISCL_FOREGROUND = 4;

enum class HostDeviceGuid { Keyboard, Mouse };
constexpr HostDeviceGuid GUID_SysKeyboard = HostDeviceGuid::Keyboard;
constexpr HostDeviceGuid GUID_SysMouse = HostDeviceGuid::Mouse;

struct DIDATAFORMAT {
    DWORD dwDataSize;
};
extern const DIDATAFORMAT c_dfDIKeyboard;  // 256 bytes by scan code, 0x80 = down
extern const DIDATAFORMAT c_dfDIMouse;     // DIMOUSESTATE

struct DIMOUSESTATE {
    LONG lX, lY, lZ;     // counts since the previous GetDeviceState; y downwards
    BYTE rgbButtons[4];  // 0x80 = down
};
static_assert(sizeof(DIMOUSESTATE) == 16);

struct IDirectInputDeviceA {
    virtual DWORD Release() = 0;
    virtual HRESULT SetDataFormat(const DIDATAFORMAT* format) = 0;
    virtual HRESULT SetCooperativeLevel(HWND window, DWORD flags) = 0;
    virtual HRESULT Acquire() = 0;
    virtual HRESULT Unacquire() = 0;
    virtual HRESULT GetDeviceState(DWORD size, void* state) = 0;  // a failure leaves `state` as it was

protected:
    ~IDirectInputDeviceA() = default;
};

struct IDirectInputA {
    virtual DWORD Release() = 0;
    virtual HRESULT CreateDevice(HostDeviceGuid guid, IDirectInputDeviceA** device, void* outer) = 0;

protected:
    ~IDirectInputA() = default;
};

HRESULT DirectInputCreateA(HINSTANCE instance, DWORD version, IDirectInputA** input, void* outer);

// Scan codes: key positions, independent of the keyboard layout.
enum DirectInputKey : BYTE {
    DIK_ESCAPE = 0x01,
    DIK_T = 0x14,
    DIK_Y = 0x15,
    DIK_U = 0x16,
    DIK_I = 0x17,
    DIK_O = 0x18,
    DIK_W = 0x11,
    DIK_R = 0x13,
    DIK_LCONTROL = 0x1D,
    DIK_D = 0x20,
    DIK_G = 0x22,
    DIK_H = 0x23,
    DIK_J = 0x24,
    DIK_K = 0x25,
    DIK_L = 0x26,
    DIK_LSHIFT = 0x2A,
    DIK_X = 0x2D,
    DIK_RSHIFT = 0x36,
    DIK_LMENU = 0x38,
    DIK_SPACE = 0x39,
    DIK_F1 = 0x3B,
    DIK_F2 = 0x3C,
    DIK_F3 = 0x3D,
    DIK_F4 = 0x3E,
    DIK_F5 = 0x3F,
    DIK_F6 = 0x40,
    DIK_F7 = 0x41,
    DIK_F8 = 0x42,
    DIK_F11 = 0x57,
    DIK_F12 = 0x58,
    DIK_NUMPADENTER = 0x9C,
    DIK_RCONTROL = 0x9D,
    DIK_RMENU = 0xB8,
    DIK_UP = 0xC8,
    DIK_LEFT = 0xCB,
    DIK_RIGHT = 0xCD,
    DIK_DOWN = 0xD0,
    DIK_LWIN = 0xDB,
    DIK_RWIN = 0xDC,
    DIK_APPS = 0xDD,
};
