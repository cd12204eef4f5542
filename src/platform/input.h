// Keyboard and mouse, polled through DirectInput, never buffered: PollKeyboard and PollMouse at the head of each
// front-end pass and each game frame, then SummariseMouse and BuildControls in the frame.
#pragma once

#include "host/dinput.h"
#include "host/win32.h"

#include <cstdint>

struct InputDevices {
    HWND window;           // null after StopInput
    IDirectInputA* input;  // null when not created, as the devices
    IDirectInputDeviceA* keyboard;
    IDirectInputDeviceA* mouse;
};
extern InputDevices Input;

extern uint8_t KeyState[256];      // by DirectInput scan code; non-zero: down at the latest poll
extern uint8_t PrevKeyState[256];  // the poll before it
extern uint8_t KeyHits[256];       // non-zero: down now, up at the previous poll

struct MouseInputState {
    int16_t left;     // 1 while button 0 is down
    int16_t right;    // 2 while button 1 is down
    int16_t xMotion;  // counts since the previous poll, y downwards
    int16_t yMotion;
    int16_t buttons;  // left | right
};
extern DIMOUSESTATE MouseState;     // the latest poll
extern MouseInputState MouseInput;  // rebuilt by SummariseMouse; StartGame clears it, or the camera's first update
                                    // would use the motion of the previous level's last frame again

constexpr uint16_t CTL_UP = 0x0001;
constexpr uint16_t CTL_DOWN = 0x0002;
constexpr uint16_t CTL_LEFT = 0x0004;
constexpr uint16_t CTL_RIGHT = 0x0008;
constexpr uint16_t CTL_SPACE = 0x0010;
constexpr uint16_t CTL_SHIFT = 0x0020;  // either Shift or either Alt
constexpr uint16_t CTL_RCTRL = 0x0040;
constexpr uint16_t CTL_LCTRL = 0x0080;
constexpr uint16_t CTL_LALT = 0x0100;
constexpr uint16_t CTL_ESC = 0x0200;
constexpr uint16_t CTL_ENTER = 0x0400;  // keypad Enter
extern uint16_t Controls;               // rebuilt by BuildControls in every game frame

bool StartInput(HINSTANCE instance, HWND window, InputDevices& devices);  // false: everything is released again
void StopInput(InputDevices& devices);                                    // safe when nothing was created

// Need started devices. A poll that fails (another application has the keyboard) keeps the state of the one before.
void PollKeyboard(InputDevices& devices);
void PollMouse(InputDevices& devices);

bool KeyDown(uint8_t code);
bool KeyHit(uint8_t code);  // went down since the previous poll
void BuildControls();
void SummariseMouse();  // MouseInput from MouseState
