// Keyboard, mouse and the focus of the one window: what back ends and scripts report, summed over all of them, and what
// the game's input calls take of it. Called on the main thread only.
#pragma once

#include "host/dinput.h"

#include <bitset>
#include <cstddef>
#include <cstdint>

constexpr int KEY_COUNT = 256;

// Who holds a key down. Each source has its own table, and a key is down while any source holds it: one source's
// release never lets go of another's key.
enum class KeySource { Keyboard, Pad, Script };
constexpr size_t KEY_SOURCES = 3;

// --- What back ends and scripts report.
// A key of the keyboard or of a pad that goes down is down at the next keyboard poll, even if it is up again by then. A
// script says what each poll sees.
void DeviceKey(KeySource source, uint8_t scanCode, bool down);
// In a level a pad holds the key at this share of the polls, 0..1, evenly spread, whatever DeviceKey says of it: what
// the key does at each poll is done that much. Elsewhere, where a key chooses something, DeviceKey's word holds.
void DevicePadShare(uint8_t scanCode, float share);
void DeviceMouseMotion(int x, int y, int wheel);  // summed until the game reads the mouse; without the focus dropped
void DeviceHandMotion(int x, int y);  // the same of the player's mouse, with the speed and direction of the settings
void DeviceMouseButton(KeySource source, int button, bool down);  // 0 left, 1 right, 2 middle; others are ignored
// The window has the focus from its creation on, until the first loss. A change posts WM_ACTIVATEAPP; a loss lets go
// of the keyboard and the mouse. What a pad holds acts again after it: pads report without the focus too.
void DeviceFocus(bool gained);
// True: from now on a loss of the focus lets go of the keyboard and the mouse and does no more, so the game plays on.
void PlayUnfocused(bool plays);
void DeviceCloseRequest();        // the window's close button: SessionHooks::requestClose
void PulseKey(uint8_t scanCode);  // down for exactly the next keyboard poll

// --- What the mouse steers, which the session knows. A machine holds the pointer only there (DeviceMouseUse), and the
// keyboard's keys do what the player has chosen for them (input/key_bindings.h) only where it steers.
enum class MouseUse {
    None,        // the screens before a level, and the settings screen
    WithButton,  // the camera, while a button is down
    Always,      // the free camera
};
void SetMouseUse(MouseUse use);
MouseUse DeviceMouseUse();

// --- What the game's input calls take.
void TakeKeys(uint8_t* keys);                         // KEY_COUNT bytes, 0x80 = down; ends the pulses
std::bitset<KEY_COUNT> PressesOf(KeySource source);   // the keys that have gone down since they were last taken
std::bitset<KEY_COUNT> TakeKeysOf(KeySource source);  // the keys of one source, as they are called on it
void DropPulses();                                    // a poll that failed
void TakeMouse(DIMOUSESTATE& state);                  // the sums since the last call, and the buttons
void SetMouseAcquired(bool acquired);                 // captures or frees the pointer
bool DeviceMouseWanted();                             // the game has the mouse acquired
bool HasFocus();
uint32_t FocusLosses();  // so far: what was acquired before a loss is acquired no more

void ResetDevices();  // nothing is down, the window has the focus, and its loss stops the game
