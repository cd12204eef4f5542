// The program's skeleton: entry point, main window, window procedure, outer loop.
#pragma once

#include "app/app_tables.h"

int WinMain(HINSTANCE instance, HINSTANCE previousInstance, char* commandLine, int showCommand);
LRESULT MainWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
