// The program's one window: its events, the pointer it holds, and the pictures it shows.
#pragma once

#include "machine/machine.h"
#include "machine/options.h"

bool DisplayIsUnseen();                                          // SDL runs a driver that shows nothing, or none at all
bool OpenGameWindow(const char* title, const Options& options);  // false: a line on standard error says why
void CloseGameWindow();
bool GameWindowOpen();
void GameWindowSize(int* width, int* height);  // pixels; it must be open
int GameWindowRate();                          // pictures a second of its display; 0: not known
void ShowPicture(const Picture& picture);
// An OpenGL texture. False: the window does not draw with OpenGL.
bool ShowTexture(uint32_t texture, int width, int height);
void ShowOverlayPicture(const Picture* overlay);             // machine/machine.h, showOverlay
void ApplySettings();                                        // machine/machine.h, applySettings
void CapturePointer(bool captured);                          // hold and hide it wherever the mouse steers
void PumpWindowEvents();                                     // reports all pending events to input/devices.h
void ShowMessageBox(const char* text, const char* caption);  // returns when the user has closed it
