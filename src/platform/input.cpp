#include "platform/input.h"

#include <cstring>

InputDevices Input;
uint8_t KeyState[256];
uint8_t PrevKeyState[256];
uint8_t KeyHits[256];
DIMOUSESTATE MouseState;
MouseInputState MouseInput;
uint16_t Controls;

namespace {

struct ControlKey {
    uint8_t code;
    uint16_t controls;
};
constexpr ControlKey CONTROL_KEYS[] = {
    {DIK_UP, CTL_UP},
    {DIK_DOWN, CTL_DOWN},
    {DIK_LEFT, CTL_LEFT},
    {DIK_RIGHT, CTL_RIGHT},
    {DIK_SPACE, CTL_SPACE},
    {DIK_LSHIFT, CTL_SHIFT},
    {DIK_RSHIFT, CTL_SHIFT},
    {DIK_LMENU, CTL_SHIFT | CTL_LALT},
    {DIK_RMENU, CTL_SHIFT},
    {DIK_RCONTROL, CTL_RCTRL},
    {DIK_LCONTROL, CTL_LCTRL},
    {DIK_ESCAPE, CTL_ESC},
    {DIK_NUMPADENTER, CTL_ENTER},
};

bool StartDevice(IDirectInputA* input, HostDeviceGuid guid, const DIDATAFORMAT& format, HWND window, DWORD level,
                 IDirectInputDeviceA*& device) {
    return !Failed(input->CreateDevice(guid, &device, nullptr)) && !Failed(device->SetDataFormat(&format)) &&
           !Failed(device->SetCooperativeLevel(window, level)) && !Failed(device->Acquire());
}

void StopDevice(IDirectInputDeviceA*& device) {
    if (!device) return;
    device->Unacquire();
    device->Release();
    device = nullptr;
}

}  // namespace

bool StartInput(HINSTANCE instance, HWND window, InputDevices& devices) {
    if (!Failed(DirectInputCreateA(instance, DIRECTINPUT_VERSION, &devices.input, nullptr))) {
        devices.window = window;
        if (StartDevice(devices.input, GUID_SysKeyboard, c_dfDIKeyboard, window, DISCL_NONEXCLUSIVE | DISCL_FOREGROUND,
                        devices.keyboard) &&
            StartDevice(devices.input, GUID_SysMouse, c_dfDIMouse, window, DISCL_EXCLUSIVE | DISCL_FOREGROUND,
                        devices.mouse))
            return true;
    }
    StopInput(devices);
    return false;
}

void StopInput(InputDevices& devices) {
    if (!devices.input) return;
    StopDevice(devices.keyboard);
    StopDevice(devices.mouse);
    devices.input->Release();
    devices.input = nullptr;
    devices.window = nullptr;
}

void PollKeyboard(InputDevices& devices) {
    // Kept as it is: nothing clears KeyState between screens: a key held through a change is not pressed anew.
    std::memcpy(PrevKeyState, KeyState, sizeof(PrevKeyState));
    devices.keyboard->Acquire();
    // Kept as it is: a failed reading leaves the state of the last one.
    devices.keyboard->GetDeviceState(sizeof(KeyState), KeyState);
    for (int code = 0; code < 256; ++code)
        KeyHits[code] = static_cast<uint8_t>((KeyState[code] ^ PrevKeyState[code]) & KeyState[code]);
}

void PollMouse(InputDevices& devices) {
    devices.mouse->Acquire();
    devices.mouse->GetDeviceState(sizeof(MouseState), &MouseState);
}

bool KeyDown(uint8_t code) {
    return KeyState[code] != 0;
}

bool KeyHit(uint8_t code) {
    return KeyHits[code] != 0;
}

void BuildControls() {
    Controls = 0;
    for (const ControlKey& key : CONTROL_KEYS) {
        if (KeyDown(key.code)) Controls |= key.controls;
    }
}

void SummariseMouse() {
    MouseInput.left = MouseState.rgbButtons[0] ? 1 : 0;
    MouseInput.right = MouseState.rgbButtons[1] ? 2 : 0;
    MouseInput.buttons = MouseInput.left | MouseInput.right;
    MouseInput.xMotion = static_cast<int16_t>(MouseState.lX);
    MouseInput.yMotion = static_cast<int16_t>(MouseState.lY);
}
