#include "input/pads.h"

#include "input/devices.h"
#include "input/keys.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <map>

namespace {

constexpr int STICK_PRESS = 10000;
constexpr int STICK_RELEASE = 8000;  // lower than STICK_PRESS, so that a stick held near it does not flutter
constexpr int STICK_RUN = 24000;     // pushed up less far, however much sideways, the left stick walks
constexpr int STICK_WALK_AGAIN = 21000;
constexpr int TURN_DEAD_ZONE = 8000;    // of both sticks, sideways
constexpr int STICK_TURN_FULL = 23000;  // the left stick turns at full speed from here on, when it is pushed up, too
constexpr float TURN_COUNTS_A_SECOND = 180;  // mouse counts that a right stick pushed all the way gives in a second
constexpr uint32_t TURN_MS_MAX = 100;  // longer times count as this, so that the camera does not jump after a pause

// What a controller can hold down: its buttons, then its sticks' directions and its trigger.
enum PadInput {
    STICK_UP = static_cast<int>(PadButton::RightStick) + 1,
    STICK_DOWN,
    STICK_LEFT,
    STICK_RIGHT,
    TRIGGER,
    STICK_WALK,  // up, but not far
    PAD_INPUTS
};

constexpr int Of(PadButton button) {
    return static_cast<int>(button);
}

// The names of all inputs, in the order of PadInput, by PadKind.
constexpr std::string_view INPUT_NAMES[][PAD_INPUTS] = {
    {"A",        "B",          "X",          "Y",           "Back", "Start",        "LB",
     "D-pad up", "D-pad down", "D-pad left", "D-pad right", "RB",   "L3",           "R3",
     "stick up", "stick down", "stick left", "stick right", "RT",   "stick half up"},
    {"Cross",    "Circle",     "Square",     "Triangle",    "Share", "Options",      "L1",
     "D-pad up", "D-pad down", "D-pad left", "D-pad right", "R1",    "L3",           "R3",
     "stick up", "stick down", "stick left", "stick right", "R2",    "stick half up"},
    {"A",           "B",          "X",           "Y",          "-",
     "+",           "L",          "D-pad up",    "D-pad down", "D-pad left",
     "D-pad right", "R",          "L3",          "R3",         "stick up",
     "stick down",  "stick left", "stick right", "ZR",         "stick half up"},
};

struct PadKey {
    int input;
    uint8_t scanCode;
};

constexpr PadKey PAD_KEYS[] = {
    {Of(PadButton::Up), KeyCode("UP")},
    {Of(PadButton::Down), KeyCode("DOWN")},
    {Of(PadButton::Left), KeyCode("LEFT")},
    {Of(PadButton::Right), KeyCode("RIGHT")},
    {STICK_UP, KeyCode("UP")},
    {STICK_DOWN, KeyCode("DOWN")},
    {STICK_LEFT, KeyCode("LEFT")},
    {STICK_RIGHT, KeyCode("RIGHT")},
    {Of(PadButton::A), KeyCode("SPACE")},   // in a level
    {Of(PadButton::A), KeyCode("RETURN")},  // in the front end
    {Of(PadButton::B), KeyCode("LSHIFT")},  // left Shift
    {Of(PadButton::LeftShoulder), KeyCode("LSHIFT")},
    {STICK_WALK, KeyCode("LSHIFT")},
    {Of(PadButton::LeftStick), KeyCode("F5")},   // the camera that follows
    {Of(PadButton::RightStick), KeyCode("F6")},  // the camera that flies
    {Of(PadButton::X), KeyCode("RCONTROL")},     // right Ctrl in a level
    {Of(PadButton::X), KeyCode("F11")},          // F11 in the front end
    {TRIGGER, KeyCode("RCONTROL")},
    {Of(PadButton::Start), KeyCode("RETURN")},
    {Of(PadButton::Y), KeyCode("F12")},              // F12
    {Of(PadButton::RightShoulder), KeyCode("F10")},  // the settings
    {Of(PadButton::Back), KeyCode("ESCAPE")},        // Escape
};

struct Pad {
    std::bitset<PAD_INPUTS> held;
    int stickX = 0, stickY = 0;
    float turnX = 0, turnY = 0;  // -1..1
    PadKind kind = PadKind::Letters;
};

std::map<int, Pad> pads;
int latestPad = 0;
std::bitset<256> keysDown;
bool turning = false;
float countsLeftX = 0, countsLeftY = 0;  // fractions of a count, kept for the next report

// From 0 at the edge of the dead zone to 1 at `full`.
float TurnOf(int value, int full) {
    const int beyond = std::abs(value) - TURN_DEAD_ZONE;
    if (beyond <= 0) return 0;
    const float turn = std::min(static_cast<float>(beyond) / static_cast<float>(full - TURN_DEAD_ZONE), 1.0f);
    return value < 0 ? -turn : turn;
}

// In a level the arrows to the sides turn at each poll, so that the stick turns by how far it is pushed.
void ReportTurn() {
    float left = 0, right = 0;
    for (const auto& [id, pad] : pads) {
        const float turn = TurnOf(pad.stickX, STICK_TURN_FULL);
        left = std::max({left, -turn, pad.held[Of(PadButton::Left)] ? 1.0f : 0.0f});
        right = std::max({right, turn, pad.held[Of(PadButton::Right)] ? 1.0f : 0.0f});
    }
    DevicePadShare(KeyCode("LEFT"), left);
    DevicePadShare(KeyCode("RIGHT"), right);
}

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
    ReportTurn();
}

void HoldByAxis(Pad& pad, PadInput input, int value) {
    const int threshold = pad.held[input] ? STICK_RELEASE : STICK_PRESS;
    pad.held[input] = value >= threshold;
}

// A stick that is pushed one way is never quite straight: across, it counts from half of that on.
void HoldByStick(Pad& pad) {
    const bool across = std::abs(pad.stickX) >= std::abs(pad.stickY) / 2;
    const bool along = std::abs(pad.stickY) >= std::abs(pad.stickX) / 2;
    HoldByAxis(pad, STICK_LEFT, across ? -pad.stickX : 0);
    HoldByAxis(pad, STICK_RIGHT, across ? pad.stickX : 0);
    HoldByAxis(pad, STICK_UP, along ? -pad.stickY : 0);
    HoldByAxis(pad, STICK_DOWN, along ? pad.stickY : 0);
    const int run = pad.held[STICK_WALK] ? STICK_RUN : STICK_WALK_AGAIN;
    pad.held[STICK_WALK] = pad.held[STICK_UP] && std::hypot(pad.stickX, pad.stickY) < run;
}

int WholeCounts(float& counts) {
    const int whole = static_cast<int>(counts);
    counts -= static_cast<float>(whole);
    return whole;
}

}  // namespace

void PadCame(int pad, PadKind kind) {
    pads[pad].kind = kind;
    latestPad = pad;
}

std::string PadNameOf(uint8_t scanCode) {
    const auto pad = pads.contains(latestPad) ? pads.find(latestPad) : pads.begin();
    if (pad == pads.end()) return {};
    const auto key = std::find_if(std::begin(PAD_KEYS), std::end(PAD_KEYS),
                                  [&](const PadKey& candidate) { return candidate.scanCode == scanCode; });
    if (key == std::end(PAD_KEYS)) return {};
    return std::string(INPUT_NAMES[static_cast<size_t>(pad->second.kind)][key->input]);
}

std::string WithPadName(std::string_view keyName, uint8_t scanCode) {
    const std::string name = PadNameOf(scanCode);
    return name.empty() ? std::string(keyName) : std::string(keyName).append(" or ").append(name);
}

void PadPress(int pad, PadButton button, bool down) {
    pads[pad].held[static_cast<size_t>(button)] = down;
    ReportKeys();
}

void PadMove(int number, PadAxis axis, int value) {
    Pad& pad = pads[number];
    switch (axis) {
    case PadAxis::LeftX:
        pad.stickX = value;
        HoldByStick(pad);
        break;
    case PadAxis::LeftY:
        pad.stickY = value;
        HoldByStick(pad);
        break;
    case PadAxis::RightTrigger: HoldByAxis(pad, TRIGGER, value); break;
    case PadAxis::RightX: pad.turnX = TurnOf(value, PAD_AXIS_FULL); break;
    case PadAxis::RightY: pad.turnY = TurnOf(value, PAD_AXIS_FULL); break;
    }
    ReportKeys();
}

void PadGone(int pad) {
    pads.erase(pad);
    ReportKeys();
}

void ResetPads() {
    pads.clear();
    ReportKeys();
    TurnWithPads(0);
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
