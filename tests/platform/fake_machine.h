// Stands in for the machine below src/platform: a clock, two devices, a display and files that the test sets, the order
// of the calls, the count of what is still held, and a failure at any chosen call.
#pragma once

#include "host/ddraw.h"
#include "host/dinput.h"
#include "host/win32.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct FakeMachine {
    uint32_t clock = 0, clockStep = 1;  // milliseconds; the clock moves at every reading
    int clockReadings = 0;

    std::vector<std::string> calls;  // of those that can fail, and Release
    int failingCall = -1;            // index into `calls` of the one that fails
    int heldObjects = 0;             // DirectDraw and DirectInput objects, device contexts, memory, files

    uint8_t keys[256] = {};
    DIMOUSESTATE mouse = {};

    std::vector<DDSURFACEDESC> modes;
    std::vector<DDSURFACEDESC> surfaces;  // as asked for
    uint32_t modeWidth = 0, modeHeight = 0, modeBits = 0;
    PALETTEENTRY systemPalette[256] = {};
    PALETTEENTRY palette[256] = {};
    bool surfacesLost = false;  // until Restore
    RECT blitFrom = {}, blitTo = {};
    int cursor = 0;

    std::map<std::string, std::vector<uint8_t>> files;
    int32_t drawnArea[4] = {}, drawnSize[2] = {};  // the latest StretchDIBits
    uint8_t drawnBits = 0;                         // its first byte
};
extern FakeMachine Fake;

void AddFakeMode(uint32_t width, uint32_t height, uint32_t bits);
