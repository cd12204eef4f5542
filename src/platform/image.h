// Windows bitmap files, drawn onto the display's offscreen surface.
#pragma once

#include <cstdint>

struct BitmapInfo {            // pointers into the loaded file
    uint8_t* file;
    uint8_t* infoHeader;       // file + 14
    uint8_t* colourTable;      // file + 54
    uint8_t* bits;
};

uint8_t* LoadFileGlobal(const char* path);                     // a GlobalAlloc block, or null
uint8_t* LoadBitmapFile(const char* path, BitmapInfo& info);   // null: no valid bitmap, nothing is held
void DrawBitmap(const BitmapInfo& info);
int ShowBitmap(const char* path);                              // a bad or missing file draws nothing; returns 1
