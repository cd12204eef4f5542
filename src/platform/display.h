// The DirectDraw display: an offscreen surface in system memory, stretched onto a full-screen flip chain. The front
// end opens one of 640 x 480 x 16, the software renderer one of 8 bits with a palette; never both at once.
#pragma once

#include "host/ddraw.h"
#include "host/win32.h"

#include <cstdint>

struct DisplayContext {
    IDirectDraw* directDraw;        // null when no display is open
    IDirectDrawPalette* palette;    // 8-bit modes only
    IDirectDrawSurface* primary;    // with one back buffer
    IDirectDrawSurface* back;       // owned by primary
    IDirectDrawSurface* offscreen;  // as large as the display mode
    IDirectDrawClipper* clipper;    // never created by the full-screen display
    RECT source;                    // requested size: the part of offscreen that is shown
    RECT mode;                      // where it is shown
};
extern DisplayContext Display;

constexpr uint8_t DISPLAY_NONE = 0;
constexpr uint8_t DISPLAY_FULL_SCREEN = 2;
extern uint8_t DisplayState;

struct DisplayModeEntry {
    uint32_t width, height, bits;
};
constexpr uint16_t DISPLAY_MODES_MAX = 100;
extern DisplayModeEntry DisplayModeTable[DISPLAY_MODES_MAX];  // for the whole run: each opening appends what it finds
extern uint16_t DisplayModeCount;

extern uint8_t* SurfaceMemory;  // the locked offscreen surface; set by LockSurface
extern int32_t SurfacePitch;    // bytes a row

// The first mode of that depth and at least that size. False: there is none, or an object could not be made; nothing
// is held then. The mouse cursor is hidden while a display is open.
bool OpenDisplay(HWND window, DisplayContext& context, uint32_t width, uint32_t height, uint32_t bits);
bool OpenSoftwareDisplay(HWND window);  // Display, ScreenResTable[ScreenResIndex] at 8 bits
void CloseDisplay();                    // safe when none is open

// The calls below do nothing (and fail) without a display. Lost surfaces are restored and a flip is tried once more;
// the picture of a frame whose blit met a lost surface is not shown.
void PresentDisplay();
HRESULT FlipDisplay(IDirectDrawSurface* override);
void ClearSurface(IDirectDrawSurface* surface);  // colour 0
HRESULT LockSurface();                           // on failure SurfaceMemory and SurfacePitch stay
void UnlockSurface();
HRESULT RestoreSurfaces();  // the result of the last Restore; DD_OK when nothing was lost

bool InitPalette(DisplayContext& context);  // from the system palette
// Entries first..last (inclusive) from a table of 256 6-bit RGB triplets, the others from the system palette.
bool SetPaletteRange(const uint8_t* rgb, DisplayContext& context, uint8_t first, uint8_t last);
