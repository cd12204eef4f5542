// The application's global state. Data only.
#pragma once

#include "host/win32.h"
#include "records/level_info.h"
#include "records/levels.h"

#include <cstdint>

constexpr const char* APP_TITLE = "Tarnwick";  // window class, window title, caption of every message box

constexpr uint8_t MODE_FRONTEND = 0;  // the attract pictures are cycling
constexpr uint8_t MODE_START = 1;     // a game is to be started
constexpr uint8_t MODE_PLAYING = 2;
constexpr uint8_t MODE_LEAVE = 3;  // the level is left for the front end; also the value at program start
constexpr uint8_t MODE_QUIT = 4;   // end the program

extern HINSTANCE AppInstance;
extern HWND MainWindow;
extern int32_t AppActive;  // 0 while another application is active; set by WM_ACTIVATEAPP
extern uint8_t GameMode;
extern uint8_t UseGlide;      // renderer choice: 1 accelerator, 0 software
extern int32_t CurrentLevel;  // chosen level 0..7; -1 while none is chosen

extern const LevelInfo LevelTable[LEVEL_COUNT];
extern const uint8_t LevelKeys[LEVEL_COUNT];  // by level: the DIK_ code of the key that chooses it
extern int32_t LoadedLevel;  // index of the record the other modules read; set by StartGame and LoadLevel
extern uint16_t SkyFlag;     // the loaded level's LevelInfo::hasSky
