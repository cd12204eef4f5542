// The messages of the one window, in the order in which they came.
#pragma once

#include "host/win32.h"

void OpenQueue(HWND window);  // what is posted from now on is for this window

// Appends a message. It is dropped while there is no window, and while a recording is replayed.
void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam);
void PostQuit(int exitCode);                   // WM_QUIT, which comes when the queue is empty
bool TakeMessage(MSG& message, bool removes);  // the next one; false: there is none

// A program that has looked at the queue waits for a message that comes after the look.
void NoteLook();
bool NewSinceLook();

void ResetQueue();  // no window, no message
