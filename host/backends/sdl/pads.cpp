#include "backends/sdl/pads.h"

#include "input/devices.h"
#include "input/keys.h"

#include <algorithm>
#include <bitset>
#include <map>

namespace {

constexpr int STICK_PRESS = 10000;
constexpr int STICK_RELEASE = 8000;  // lower than STICK_PRESS, so that a stick held near it does not flutter
constexpr int TURN_DEAD_ZONE = 8000;
constexpr float TURN_COUNTS_A_SECOND = 180;  // mouse counts that a right stick pushed all the way gives in a second
constexpr uint32_t TURN_MS_MAX = 100;  // longer times count as this, so that the camera does not jump after a pause

// What a controller can hold down: its buttons, then its sticks' directions and its trigger.
enum PadInput { STICK_UP = SDL_CONTROLLER_BUTTON_MAX, STICK_DOWN, STICK_LEFT, STICK_RIGHT, TRIGGER, PAD_INPUTS };

struct PadKey {
    int input;
    uint8_t scanCode;
};

constexpr PadKey PAD_KEYS[] = {
    {SDL_CONTROLLER_BUTTON_DPAD_UP, KeyCode("UP")},
    {SDL_CONTROLLER_BUTTON_DPAD_DOWN, KeyCode("DOWN")},
    {SDL_CONTROLLER_BUTTON_DPAD_LEFT, KeyCode("LEFT")},
    {SDL_CONTROLLER_BUTTON_DPAD_RIGHT, KeyCode("RIGHT")},
    {STICK_UP, KeyCode("UP")},
    {STICK_DOWN, KeyCode("DOWN")},
    {STICK_LEFT, KeyCode("LEFT")},
    {STICK_RIGHT, KeyCode("RIGHT")},
    {SDL_CONTROLLER_BUTTON_A, KeyCode("SPACE")},   // Space
    {SDL_CONTROLLER_BUTTON_B, KeyCode("LSHIFT")},  // left Shift
    {SDL_CONTROLLER_BUTTON_LEFTSHOULDER, KeyCode("LSHIFT")},
    {SDL_CONTROLLER_BUTTON_X, KeyCode("RCONTROL")},  // right Ctrl in a level
    {SDL_CONTROLLER_BUTTON_X, KeyCode("F11")},       // F11 in the front end
    {TRIGGER, KeyCode("RCONTROL")},
    {SDL_CONTROLLER_BUTTON_START, KeyCode("F1")},     // F1
    {SDL_CONTROLLER_BUTTON_Y, KeyCode("F12")},        // F12
    {SDL_CONTROLLER_BUTTON_BACK, KeyCode("ESCAPE")},  // Escape
};

struct Pad {
    SDL_GameController* controller = nullptr;
    std::bitset<PAD_INPUTS> held;
    float turnX = 0, turnY = 0;  // -1..1
};

std::map<SDL_JoystickID, Pad> pads;
std::bitset<256> keysDown;
bool turning = false;
float countsLeftX = 0, countsLeftY = 0;  // fractions of a count, kept for the next report

void ReportKeys() {
    std::bitset<PAD_INPUTS> held;
    for (const auto& [id, pad] : pads)
        held |= pad.held;
    std::bitset<256> now;
    for (const PadKey& key : PAD_KEYS)
        if (held[static_cast<size_t>(key.input)]) now.set(key.scanCode);
    const std::bitset<256> changed = now ^ keysDown;
    keysDown = now;
    for (size_t code = 0; code < changed.size(); ++code)
        if (changed[code]) DeviceKey(KeySource::Pad, static_cast<uint8_t>(code), now[code]);
}

void AddPad(int deviceIndex) {
    SDL_GameController* controller = SDL_GameControllerOpen(deviceIndex);
    if (!controller) return;
    pads[SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller))].controller = controller;
}

void RemovePad(SDL_JoystickID id) {
    const auto pad = pads.find(id);
    if (pad == pads.end()) return;
    SDL_GameControllerClose(pad->second.controller);
    pads.erase(pad);
}

void HoldByAxis(Pad& pad, PadInput input, int value) {
    const int threshold = pad.held[input] ? STICK_RELEASE : STICK_PRESS;
    pad.held[input] = value >= threshold;
}

float TurnOf(int value) {
    return value > -TURN_DEAD_ZONE && value < TURN_DEAD_ZONE ? 0 : static_cast<float>(value) / 32768;
}

void MoveAxis(Pad& pad, uint8_t axis, int value) {
    switch (axis) {
    case SDL_CONTROLLER_AXIS_LEFTX:
        HoldByAxis(pad, STICK_LEFT, -value);
        HoldByAxis(pad, STICK_RIGHT, value);
        break;
    case SDL_CONTROLLER_AXIS_LEFTY:
        HoldByAxis(pad, STICK_UP, -value);
        HoldByAxis(pad, STICK_DOWN, value);
        break;
    case SDL_CONTROLLER_AXIS_TRIGGERRIGHT: HoldByAxis(pad, TRIGGER, value); break;
    case SDL_CONTROLLER_AXIS_RIGHTX: pad.turnX = TurnOf(value); break;
    case SDL_CONTROLLER_AXIS_RIGHTY: pad.turnY = TurnOf(value); break;
    default: break;
    }
}

int WholeCounts(float& counts) {
    const int whole = static_cast<int>(counts);
    counts -= static_cast<float>(whole);
    return whole;
}

}  // namespace

void StartPads() {
    SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER);
}

void StopPads() {
    while (!pads.empty())
        RemovePad(pads.begin()->first);
    ReportKeys();
    TurnWithPads(0);
}

void HandlePadEvent(const SDL_Event& event) {
    if (event.type == SDL_CONTROLLERDEVICEADDED) {
        AddPad(event.cdevice.which);
        return;
    }
    if (event.type == SDL_CONTROLLERDEVICEREMOVED) {
        RemovePad(event.cdevice.which);
    } else if (event.type == SDL_CONTROLLERAXISMOTION) {
        const auto pad = pads.find(event.caxis.which);
        if (pad != pads.end()) MoveAxis(pad->second, event.caxis.axis, event.caxis.value);
    } else if (event.type == SDL_CONTROLLERBUTTONDOWN || event.type == SDL_CONTROLLERBUTTONUP) {
        const auto pad = pads.find(event.cbutton.which);
        if (pad != pads.end() && event.cbutton.button < SDL_CONTROLLER_BUTTON_MAX)
            pad->second.held[event.cbutton.button] = event.cbutton.state == SDL_PRESSED;
    } else {
        return;
    }
    ReportKeys();
}

void TurnWithPads(uint32_t milliseconds) {
    float turnX = 0, turnY = 0;
    for (const auto& [id, pad] : pads) {
        turnX += pad.turnX;
        turnY += pad.turnY;
    }
    const bool turned = turnX != 0 || turnY != 0;
    if (turned != turning) DeviceMouseButton(KeySource::Pad, 0, turned);
    turning = turned;
    if (!turned) return;
    const float counts = TURN_COUNTS_A_SECOND * static_cast<float>(std::min(milliseconds, TURN_MS_MAX)) / 1000;
    countsLeftX += turnX * counts;
    countsLeftY += turnY * counts;
    const int x = WholeCounts(countsLeftX);
    const int y = WholeCounts(countsLeftY);
    DeviceMouseMotion(x, y, 0);
}
