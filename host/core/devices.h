// Where the machines' back ends report what their devices did. Everything lands in core/: the key table, the mouse
// sums and the message queue. Called on the main thread only.
#pragma once

#include <cstdint>

// Who holds a key down. Each source has its own table and they are ORed, so that one source's release never lets go
// of another's key.
enum class KeySource { Keyboard, Pad, Script };

void DeviceKey(KeySource source, uint8_t scanCode, bool down);
void DeviceMouseMotion(int x, int y, int wheel);      // summed until the game reads the mouse
void DeviceMouseButton(KeySource source, int button, bool down);  // 0 left, 1 right, 2 middle
void DeviceFocus(bool gained);                        // posts WM_ACTIVATEAPP; losing it lets go of all keys
void DeviceCloseRequest();                            // the window's close button: pulses the left Windows key until the program ends
bool DeviceMouseWanted();                             // the game has the mouse acquired
