// The back end's choice, the screen size, and clearing and presenting a frame.
#pragma once

#include "render/device/device.h"
#include "render/render_tables.h"

// Chooses the accelerator (UseGlide 1 and a board present) or the software display of the given ScreenResTable
// index. False: neither could be opened.
bool InitGraphics(int32_t softwareScreenRes);
void SetupScreen();  // projection constants, node radii, display palette; presents once
void SwapScreen();
void ClearFrame();  // software: the lower half to GROUND_COLOUR; accelerator: black, and the farthest depth
