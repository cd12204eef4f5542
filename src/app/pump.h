// The message pump that the front end and the game run on.
#pragma once

#include <cstdint>

// One message a turn; when the queue is empty and the program is the active one, one step of work, else a wait for
// messages. Ends when GameMode is no longer `mode`, or on WM_QUIT. A processor or C++ exception inside a step shows
// "Exception" and ends the process with the exception's code.
void RunMessagePump(uint8_t mode, void (*step)());
