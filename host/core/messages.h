// The message queue of the one window.
#pragma once

#include "host/win32.h"

// At the end of the queue. Dropped while there is no window.
void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam);
void ResetMessages();  // no window, no class, an empty queue, display count 0
