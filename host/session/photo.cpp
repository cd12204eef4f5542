#include "session/photo.h"

#include "input/devices.h"
#include "input/pads.h"
#include "machine/clock.h"
#include "machine/game.h"
#include "machine/machine.h"
#include "machine/output.h"
#include "machine/overlay.h"
#include "session/closing.h"
#include "session/front_end.h"
#include "session/message.h"
#include "session/pictures.h"
#include "session/screenshot.h"

#include <algorithm>

namespace {

constexpr float SPEED = 300.0f, SPEED_WITH_SHIFT = 1200.0f;  // world units a second
constexpr float COUNTS_A_DEGREE = 8.0f;                      // motion of the mouse that turns the camera by a degree
constexpr float PITCH_MOST = 89.0f;                          // degrees, up and down
constexpr uint8_t PAD_SAVE_KEY = KeyCode("F12");             // a controller has no P

HostCamera frameCamera;
bool hasFrame = false;

std::string Instruction() {
    const std::string save = PadNameOf(PAD_SAVE_KEY);
    if (save.empty()) return "Mouse and arrows move, P saves, Escape leaves";
    return "Sticks move, " + save + " saves, " + PadNameOf(DIK_ESCAPE) + " leaves";
}

float Direction(const uint8_t* keys, uint8_t forth, uint8_t back) {
    return (keys[forth] != 0 ? 1.0f : 0.0f) - (keys[back] != 0 ? 1.0f : 0.0f);
}

// `seconds`: how long the keys have been held. True: the camera moves.
bool Steer(const uint8_t* keys, float seconds, HostCamera& camera, float (&move)[3]) {
    const bool fast = keys[DIK_LSHIFT] != 0 || keys[DIK_RSHIFT] != 0;
    const float distance = seconds * (fast ? SPEED_WITH_SHIFT : SPEED);
    move[0] = distance * Direction(keys, DIK_RIGHT, DIK_LEFT);
    move[1] = distance * Direction(keys, DIK_SPACE, DIK_RCONTROL);
    move[2] = distance * Direction(keys, DIK_UP, DIK_DOWN);
    DIMOUSESTATE mouse;
    TakeMouse(mouse);
    camera.angles[0] =
        std::clamp(camera.angles[0] - static_cast<float>(mouse.lY) / COUNTS_A_DEGREE, -PITCH_MOST, PITCH_MOST);
    camera.angles[1] += static_cast<float>(mouse.lX) / COUNTS_A_DEGREE;
    return mouse.lX != 0 || mouse.lY != 0 || move[0] != 0.0f || move[1] != 0.0f || move[2] != 0.0f;
}

}  // namespace

bool CanTakePhotos() {
    return hasFrame && CurrentGame->drawFrom && !InFrontEnd();
}

void KeepPhotoCamera(const HostFrameReport& report) {
    std::copy(std::begin(report.camera), std::end(report.camera), frameCamera.position);
    std::copy(std::begin(report.cameraAngles), std::end(report.cameraAngles), frameCamera.angles);
    hasFrame = true;
}

void RunPhotoMode() {
    HostCamera camera = frameCamera;
    float move[3] = {};
    if (!CurrentGame->drawFrom(camera, move)) return;
    ShowMessage(Instruction(), "");
    SetMouseUse(MouseUse::Always);
    uint8_t keys[KEY_COUNT];
    TakeKeys(keys);
    DIMOUSESTATE ignored;
    TakeMouse(ignored);
    bool escapeWasDown = true;
    for (uint32_t before = ReadClock(); !CloseRequested();) {
        CurrentMachine->wait();
        const uint32_t now = ReadClock();
        TakeKeys(keys);
        const bool escape = keys[DIK_ESCAPE] != 0 || keys[PHOTO_KEY] != 0;
        if (escape && !escapeWasDown) break;
        escapeWasDown = escape;
        if (Steer(keys, static_cast<float>(now - before) / 1000.0f, camera, move)) CurrentGame->drawFrom(camera, move);
        if (keys[PAD_SAVE_KEY] != 0) keys[SCREENSHOT_KEY] = keys[PAD_SAVE_KEY];
        OfferScreenshot(keys);
        HideOldMessage();
        before = now;
    }
    HideOverlay();
    TakeMouse(ignored);
}

bool WritePhoto(const HostCamera& camera, const std::string& file) {
    HostCamera from = camera;
    if (CanTakePhotos() && CurrentGame->drawFrom(from, {0.0f, 0.0f, 0.0f})) return WritePicture(file);
    PrintError("cannot take the photo %s: no level is being played", file.c_str());
    return false;
}
