// Drawing of device-independent bitmaps onto surfaces.
#pragma once

#include "host/win32.h"

#include <cstdint>

// What a device context draws on. That of the screen has no memory: drawing there does nothing.
struct HostDeviceContext {
    uint8_t* pixels;  // null: the screen
    uint32_t pitch;   // bytes
    uint32_t width, height, bits;
};

// The colours an 8-bit display has before a program sets any: the twenty fixed ones at both ends, the rest black.
const PALETTEENTRY* SystemPalette();
