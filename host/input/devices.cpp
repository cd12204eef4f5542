#include "input/devices.h"

#include "input/key_bindings.h"
#include "input/message_queue.h"
#include "input/session_hooks.h"
#include "machine/machine.h"
#include "machine/settings.h"

#include <algorithm>
#include <bitset>
#include <map>

namespace {

constexpr int BUTTON_COUNT = 4;
constexpr uint8_t STATE_DOWN = 0x80;

struct SourceState {
    std::bitset<KEY_COUNT> keys;
    std::bitset<KEY_COUNT> pulses;  // down at the next poll, whatever `keys` is by then
    std::bitset<BUTTON_COUNT> buttons;
};

// A key that a pad holds at a share of the polls.
struct SharedKey {
    static constexpr float AT_REST = 0.5f;  // a push of half and more acts at once

    float share = 0;
    float most = 0;       // of the shares since the last poll, so that a short push is not lost
    float due = AT_REST;  // the key is down whenever this reaches 1

    bool TakePoll() {
        due = most > 0 ? due + most : AT_REST;
        most = share;
        if (due < 1) return false;
        due -= 1;
        return true;
    }
};

SourceState sources[KEY_SOURCES];
std::map<uint8_t, SharedKey> sharedKeys;  // of the pads
int64_t motion[3];                        // x, y, wheel
bool focused = true;
bool playsUnfocused = false;
uint32_t focusLosses = 0;
bool mouseAcquired = false;
MouseUse mouseUse = MouseUse::None;

LONG TakeSum(int64_t& sum) {
    const auto taken = static_cast<LONG>(std::clamp<int64_t>(sum, INT32_MIN, INT32_MAX));
    sum = 0;
    return taken;
}

SourceState& StateOf(KeySource source) {
    return sources[static_cast<int>(source)];
}

void LetGo() {
    StateOf(KeySource::Keyboard) = StateOf(KeySource::Script) = {};
    DropPulses();
    std::fill(std::begin(motion), std::end(motion), 0);
}

}  // namespace

void DeviceKey(KeySource source, uint8_t scanCode, bool down) {
    StateOf(source).keys[scanCode] = down;
    if (down && source != KeySource::Script) StateOf(source).pulses.set(scanCode);
}

void DevicePadShare(uint8_t scanCode, float share) {
    SharedKey& key = sharedKeys[scanCode];
    key.share = share;
    key.most = std::max(key.most, share);
}

void DeviceMouseMotion(int x, int y, int wheel) {
    if (!focused) return;
    motion[0] += x;
    motion[1] += y;
    motion[2] += wheel;
}

// Fractions of a count are kept for the next report.
void DeviceHandMotion(int x, int y) {
    static int restX = 0, restY = 0;  // hundredths of a count
    const int percent = SettingValue(Setting::MouseSpeed);
    restX += x * percent;
    restY += SettingValue(Setting::MouseInverted) ? -y * percent : y * percent;
    DeviceMouseMotion(restX / 100, restY / 100, 0);
    restX %= 100;
    restY %= 100;
}

void DeviceMouseButton(KeySource source, int button, bool down) {
    if (button < 0 || button >= BUTTON_COUNT) return;
    StateOf(source).buttons[static_cast<size_t>(button)] = down;
}

void DeviceFocus(bool gained) {
    if (playsUnfocused && !gained) {
        LetGo();
        return;
    }
    if (gained == focused) return;
    focused = gained;
    if (!gained) {
        ++focusLosses;
        LetGo();
        SetMouseAcquired(false);
    }
    DropPulses();  // a pad reports without the focus, too
    PostToWindow(WM_ACTIVATEAPP, gained ? 1 : 0, 0);
}

void PlayUnfocused(bool plays) {
    playsUnfocused = plays;
}

void DeviceCloseRequest() {
    Session.requestClose();
}

void SetMouseUse(MouseUse use) {
    mouseUse = use;
}

MouseUse DeviceMouseUse() {
    return mouseUse;
}

bool DeviceMouseWanted() {
    return mouseAcquired;
}

void PulseKey(uint8_t scanCode) {
    StateOf(KeySource::Script).pulses.set(scanCode);
}

std::bitset<KEY_COUNT> PressesOf(KeySource source) {
    return StateOf(source).pulses;
}

std::bitset<KEY_COUNT> TakeKeysOf(KeySource source) {
    SourceState& state = StateOf(source);
    const std::bitset<KEY_COUNT> down = state.keys | state.pulses;
    state.pulses.reset();
    return down;
}

void TakeKeys(uint8_t* keys) {
    std::bitset<KEY_COUNT> down = TakeKeysOf(KeySource::Pad);
    const bool inLevel = mouseUse != MouseUse::None;
    for (auto& [code, key] : sharedKeys)
        if (inLevel) down[code] = key.TakePoll();
    down |= TakeKeysOf(KeySource::Script);
    const std::bitset<KEY_COUNT> keyboard = TakeKeysOf(KeySource::Keyboard);
    if (!inLevel) {
        down |= keyboard;
    } else if (keyboard.any()) {
        const std::array<uint8_t, KEY_COUNT> meanings = KeyMeanings();
        for (size_t code = 0; code < KEY_COUNT; ++code)
            if (keyboard[code]) down.set(meanings[code]);
        down.reset(0);
    }
    for (size_t code = 0; code < KEY_COUNT; ++code)
        keys[code] = down[code] ? STATE_DOWN : 0;
}

void DropPulses() {
    for (SourceState& source : sources)
        source.pulses.reset();
    for (auto& [code, key] : sharedKeys)
        key.most = key.share;
}

void TakeMouse(DIMOUSESTATE& state) {
    state.lX = TakeSum(motion[0]);
    state.lY = TakeSum(motion[1]);
    state.lZ = TakeSum(motion[2]);
    std::bitset<BUTTON_COUNT> down;
    for (const SourceState& source : sources)
        down |= source.buttons;
    for (size_t button = 0; button < BUTTON_COUNT; ++button)
        state.rgbButtons[button] = down[button] ? STATE_DOWN : 0;
}

void SetMouseAcquired(bool acquired) {
    if (acquired == mouseAcquired) return;
    mouseAcquired = acquired;
    if (!Session.replaying()) CurrentMachine->setMouseCaptured(acquired);
}

bool HasFocus() {
    return focused;
}

uint32_t FocusLosses() {
    return focusLosses;
}

void ResetDevices() {
    LetGo();
    StateOf(KeySource::Pad) = {};
    sharedKeys.clear();
    focused = true;
    playsUnfocused = false;
    mouseAcquired = false;
    mouseUse = MouseUse::None;
}
