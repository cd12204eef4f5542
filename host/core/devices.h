// Where the machines' back ends report what their devices did. Everything lands in core/: the key table, the mouse
// sums and the message queue. Called on the main thread only.
#pragma once

#include <cstdint>

// Who holds a key down. Each source has its own table and they are ORed, so that one source's release never lets go
// of another's key.
enum class KeySource { Keyboard, Pad, Script };

void DeviceKey(KeySource source, uint8_t scanCode, bool down);
void DeviceMouseMotion(int x, int y, int wheel);  // summed until the game reads the mouse; without the focus dropped
void DeviceMouseButton(KeySource source, int button, bool down);  // 0 left, 1 right, 2 middle; others are ignored
// The window has the focus from its creation on, until the first loss. A change posts WM_ACTIVATEAPP; a loss lets go
// of the keyboard and the mouse. What a pad holds acts again after it: pads report without the focus too.
void DeviceFocus(bool gained);
// The window's close button: presses the left Windows key again and again until the program ends. Where the game
// takes no messages it does not look at that key, so there the process ends at once, with status 0.
void DeviceCloseRequest();
bool DeviceMouseWanted();  // the game has the mouse acquired
