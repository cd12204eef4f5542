// The DirectDraw display: an offscreen surface in system memory, stretched onto a full-screen flip chain.
#pragma once

#include "host/ddraw.h"
#include "host/win32.h"

#include <cstdint>

struct DisplayContext {
    IDirectDraw* directDraw;          // null when no display is open
    IDirectDrawPalette* palette;      // 8-bit modes only
    IDirectDrawSurface* primary;      // with one back buffer
    IDirectDrawSurface* back;         // owned by primary
    IDirectDrawSurface* offscreen;    // size of the display mode
    IDirectDrawClipper* clipper;      // never created by the full-screen display
    RECT source;                      // requested size: the part of offscreen that is shown
    RECT mode;                        // where it is shown
};
extern DisplayContext Display;

constexpr uint8_t DISPLAY_NONE = 0;
constexpr uint8_t DISPLAY_FULL_SCREEN = 2;
extern uint8_t DisplayState;

extern uint8_t* SurfaceMemory;  // set by LockSurface
extern int32_t SurfacePitch;    // bytes

bool OpenDisplay(HWND window, DisplayContext& context, uint32_t width, uint32_t height, uint32_t bits);
bool OpenSoftwareDisplay(HWND window);  // ScreenResTable[ScreenResIndex] at 8 bits
void CloseDisplay();
void PresentDisplay();
HRESULT FlipDisplay(IDirectDrawSurface* override);
void ClearSurface(IDirectDrawSurface* surface);  // colour 0
HRESULT LockSurface();                           // fails without a display
void UnlockSurface();
HRESULT RestoreSurfaces();
bool InitPalette(DisplayContext& context);
// Entries first..last (inclusive) from a table of 6-bit RGB triplets, the others from the system palette.
bool SetPaletteRange(const uint8_t* rgb, DisplayContext& context, uint8_t first, uint8_t last);
