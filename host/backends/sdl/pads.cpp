#include "backends/sdl/pads.h"

#include "input/pads.h"

#include <map>
#include <optional>

namespace {

std::map<SDL_JoystickID, SDL_GameController*> controllers;

std::optional<PadButton> ButtonOf(uint8_t button) {
    switch (button) {
    case SDL_CONTROLLER_BUTTON_A: return PadButton::A;
    case SDL_CONTROLLER_BUTTON_B: return PadButton::B;
    case SDL_CONTROLLER_BUTTON_X: return PadButton::X;
    case SDL_CONTROLLER_BUTTON_Y: return PadButton::Y;
    case SDL_CONTROLLER_BUTTON_BACK: return PadButton::Back;
    case SDL_CONTROLLER_BUTTON_START: return PadButton::Start;
    case SDL_CONTROLLER_BUTTON_LEFTSHOULDER: return PadButton::LeftShoulder;
    case SDL_CONTROLLER_BUTTON_RIGHTSHOULDER: return PadButton::RightShoulder;
    case SDL_CONTROLLER_BUTTON_LEFTSTICK: return PadButton::LeftStick;
    case SDL_CONTROLLER_BUTTON_RIGHTSTICK: return PadButton::RightStick;
    case SDL_CONTROLLER_BUTTON_DPAD_UP: return PadButton::Up;
    case SDL_CONTROLLER_BUTTON_DPAD_DOWN: return PadButton::Down;
    case SDL_CONTROLLER_BUTTON_DPAD_LEFT: return PadButton::Left;
    case SDL_CONTROLLER_BUTTON_DPAD_RIGHT: return PadButton::Right;
    default: return {};
    }
}

std::optional<PadAxis> AxisOf(uint8_t axis) {
    switch (axis) {
    case SDL_CONTROLLER_AXIS_LEFTX: return PadAxis::LeftX;
    case SDL_CONTROLLER_AXIS_LEFTY: return PadAxis::LeftY;
    case SDL_CONTROLLER_AXIS_RIGHTX: return PadAxis::RightX;
    case SDL_CONTROLLER_AXIS_RIGHTY: return PadAxis::RightY;
    case SDL_CONTROLLER_AXIS_TRIGGERRIGHT: return PadAxis::RightTrigger;
    default: return {};
    }
}

PadKind KindOf(SDL_GameController* controller) {
    switch (SDL_GameControllerGetType(controller)) {
    case SDL_CONTROLLER_TYPE_PS3:
    case SDL_CONTROLLER_TYPE_PS4:
    case SDL_CONTROLLER_TYPE_PS5: return PadKind::Symbols;
    case SDL_CONTROLLER_TYPE_NINTENDO_SWITCH_PRO:
    case SDL_CONTROLLER_TYPE_NINTENDO_SWITCH_JOYCON_LEFT:
    case SDL_CONTROLLER_TYPE_NINTENDO_SWITCH_JOYCON_RIGHT:
    case SDL_CONTROLLER_TYPE_NINTENDO_SWITCH_JOYCON_PAIR: return PadKind::PlusMinus;
    default: return PadKind::Letters;
    }
}

void AddPad(int deviceIndex) {
    SDL_GameController* controller = SDL_GameControllerOpen(deviceIndex);
    if (!controller) return;
    const SDL_JoystickID id = SDL_JoystickInstanceID(SDL_GameControllerGetJoystick(controller));
    controllers[id] = controller;
    PadCame(id, KindOf(controller));
}

void RemovePad(SDL_JoystickID id) {
    const auto controller = controllers.find(id);
    if (controller == controllers.end()) return;
    SDL_GameControllerClose(controller->second);
    controllers.erase(controller);
    PadGone(id);
}

}  // namespace

void StartPads() {
    SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER);
}

void StopPads() {
    while (!controllers.empty())
        RemovePad(controllers.begin()->first);
    ResetPads();
}

void HandlePadEvent(const SDL_Event& event) {
    switch (event.type) {
    case SDL_CONTROLLERDEVICEADDED: AddPad(event.cdevice.which); break;
    case SDL_CONTROLLERDEVICEREMOVED: RemovePad(event.cdevice.which); break;
    case SDL_CONTROLLERAXISMOTION:
        if (const auto axis = AxisOf(event.caxis.axis); axis && controllers.contains(event.caxis.which))
            PadMove(event.caxis.which, *axis, event.caxis.value);
        break;
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP:
        if (const auto button = ButtonOf(event.cbutton.button); button && controllers.contains(event.cbutton.which))
            PadPress(event.cbutton.which, *button, event.cbutton.state == SDL_PRESSED);
        break;
    default: break;
    }
}
