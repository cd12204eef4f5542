// One record of the built-in level table.
#pragma once

#include "records/vec3.h"

#include <cstdint>

struct LevelInfo {
    const char* textureFile;
    const char* worldFile;
    const char* skyFile;
    const char* lightMapFile;
    const char* lightSlotFile;
    uint8_t unused0;  // 0
    float unused1;    // 0.9
    float unused2;    // 0.33
    Vec3 start;       // the player's start position
    uint16_t skin;    // a LevelSkin
    uint16_t hasSky;  // non-zero: DrawSky in every frame
    uint16_t minFrameTicks;
    uint32_t textureColour;  // 0x00RRGGBB
    float unused3;           // 0
    float unused4;           // 5000
    uint32_t fogColour;      // 0x00RRGGBB
};
