// The picture being shown, and its way to the machine.
#pragma once

#include "host/win32.h"
#include "machine/machine.h"

#include <cstdint>

// The front buffer as it lies in memory: 8 bits with a palette of 256 entries, 16 bits (5-6-5), or
// 32 bits (0x00RRGGBB).
struct FrontBuffer {
    const uint8_t* pixels;
    uint32_t pitch;  // bytes
    uint32_t width, height, bits;
    const PALETTEENTRY* palette;  // 8 bits only
};

// A picture that lies in a texture of OpenGL, upper row first. `read` fetches its pixels.
struct FrontTexture {
    uint32_t name;
    uint32_t width, height;
    FrontBuffer (*read)();
};

// Shows the front buffer. Its memory must stay as it is until the next call or FreezeFront.
void ShowFront(const FrontBuffer& front);
void ShowFrontTexture(const FrontTexture& front);  // the same for the texture
// While it is deferred, what is to be shown is not, until ShowDeferredFront.
bool DeferFront(bool deferred);  // returns what was so before
void ShowDeferredFront();
void FreezeFront();  // called before the memory is released: the picture stays on the screen
// True: the picture shown last stays on the screen whatever is shown, until false. Its memory may be released after
// FreezeFront.
void HoldFront(bool held);
const Picture* FrontPicture();  // valid until the next ShowFront; null before the first
bool FrontIsReproducible();     // the same input gives the same pixels on every machine
void ResetPresentation();
