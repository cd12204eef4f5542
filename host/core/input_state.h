// The state of keyboard and mouse, summed over everything that reports through core/devices.h; read by DirectInput.
#pragma once

#include "host/dinput.h"

#include <cstdint>

constexpr int KEY_COUNT = 256;

void PulseKey(uint8_t scanCode);       // down for exactly the next keyboard poll
void TakeKeys(uint8_t* keys);          // KEY_COUNT bytes, 0x80 = down; ends the pulses
void DropPulses();                     // a poll that failed
void TakeMouse(DIMOUSESTATE& state);   // the sums since the last call, and the buttons
void SetMouseAcquired(bool acquired);  // captures or frees the pointer
bool HasFocus();
uint32_t FocusLosses();  // so far: what was acquired before a loss is acquired no more
void ResetInputState();  // nothing is down, the window has the focus
