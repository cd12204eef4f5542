// Windows bitmap files, drawn onto the display's offscreen surface.
#pragma once

#include "host/win32.h"

#include <cstdint>

struct BitmapInfo {  // pointers into the loaded file
    uint8_t* file;
    uint8_t* infoHeader;   // file + 14
    uint8_t* colourTable;  // file + 54
    uint8_t* bits;
};

// The whole file in a block of GlobalAlloc and its length, or null. The caller releases it.
uint8_t* LoadFileGlobal(const char* path, DWORD& size);

// The loaded file; null, and nothing held, when it cannot be read, is shorter than its headers, has no "BM" or keeps
// its bits outside itself. Everything further inside it is checked by StretchDIBits.
uint8_t* LoadBitmapFile(const char* path, BitmapInfo& info);

void DrawBitmap(const BitmapInfo& info);  // stretched to the display's requested size
int ShowBitmap(const char* path);         // a bad or missing file draws nothing; returns 1
