// The program's one window: its events, the pointer it holds, and the pictures it shows.
#pragma once

#include "machine/machine.h"
#include "machine/options.h"

bool DisplayIsUnseen();  // SDL runs one of its drivers that show nothing, or none
bool OpenGameWindow(const char* title, const Options& options);  // false: a line on standard error says why
void CloseGameWindow();
bool GameWindowOpen();
void ShowPicture(const Picture& picture);
bool ShowTexture(uint32_t texture, int width, int height);   // of OpenGL; false: the window has nothing to do with it
void CapturePointer(bool captured);                          // hold and hide it while the window has the focus
void PumpWindowEvents();                                     // everything pending, into input/devices.h
void ShowMessageBox(const char* text, const char* caption);  // returns when it was closed
