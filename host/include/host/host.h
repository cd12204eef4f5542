// The machine the game believes it runs on: options, devices, clock. main() calls this and nothing else.
#pragma once

#include "host/win32.h"

using GameMain = int (*)(HINSTANCE instance, HINSTANCE previousInstance, char* commandLine, int showCommand);

// Reads the options, opens a machine (a window, or the headless one), runs the game. The process's exit status:
// the game's own; 2 for a wrong option, script or replay file.
int HostMain(int argumentCount, char** arguments, GameMain gameMain);
