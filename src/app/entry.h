// The program's skeleton: entry point, main window, window procedure, outer loop.
#pragma once

#include "app/app_tables.h"

// Always 0. Sets up window and input (a failure shows a box and ends), then alternates front end and game until
// GameMode is MODE_QUIT, or until neither of the two could open a display.
int WinMain(HINSTANCE instance, HINSTANCE previousInstance, char* commandLine, int showCommand);

LRESULT MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
