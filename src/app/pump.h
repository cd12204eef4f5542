// The message pump that the front end and the game run on.
#pragma once

#include <cstdint>

// Handles one message a turn. When the queue is empty it calls `step` if the program is the active one, and otherwise
// waits for messages. Returns when GameMode is no longer `mode`, or on WM_QUIT. A processor or C++ exception inside a
// step shows "Exception" and ends the process with the exception's code.
void RunMessagePump(uint8_t mode, void (*step)());
