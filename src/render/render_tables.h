// The renderer's global tables: screen, projection, textures. Data only.
#pragma once

#include "records/texture_records.h"

#include <cstdint>

struct ScreenRes {
    int32_t width, height;
};
extern const ScreenRes ScreenResTable[3];  // 320 x 240, 512 x 384, 640 x 480

extern int32_t ScreenResIndex;  // entry of ScreenResTable of the open display; 2 with the accelerator
extern int32_t ScreenWidth, ScreenHeight;
extern int32_t FramePitch;    // bytes a row of the software frame
extern uint8_t* FrameBuffer;  // software frame being drawn; set by SetupFog and by GameFrame
extern float ProjectionScaleX, ProjectionScaleY;
extern float ScreenCentreX, ScreenCentreY;
extern float ScreenAspect;  // ProjectionScaleX / ProjectionScaleY; 1 until SetupScreen
extern float DepthScale;    // 63000 / FarDistance, set by GameFrame

extern uint8_t* TextureImage;      // texture.bin as loaded; null without a level
extern uint32_t TextureCount;      // N, 1..500
extern uint8_t* TextureRemap;      // N bytes, rotated by TextureCycle; read by RemappedTexture
extern uint8_t ShadeTable[65536];  // light level x 256 + colour -> colour; rows 0..127 are used
extern float IntensityTable[128];  // entry i = i x 256
extern uint32_t LineColour;        // palette index of debug lines, low 8 bits used

constexpr int FOG_SWITCH_ON = -1;
extern int32_t FogSwitch;  // 0: outlines only; anything else: the normal view. Written by the W key

inline TextureRecord* TextureRecords() {
    return reinterpret_cast<TextureRecord*>(TextureImage + TEXTURE_RECORDS_OFFSET);
}
