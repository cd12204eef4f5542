// The one window and its messages: what the calls of host/win32.h stand on.
#pragma once

void ResetWindows();  // no window, no class, an empty queue, display count 0
