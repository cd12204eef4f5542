#include "render/render_tables.h"

const ScreenRes ScreenResTable[3] = {{320, 240}, {512, 384}, {640, 480}};

int32_t ScreenResIndex;
int32_t ScreenWidth, ScreenHeight;
int32_t FramePitch;
uint8_t* FrameBuffer;
float ProjectionScaleX, ProjectionScaleY;
float ScreenCentreX, ScreenCentreY;
float ScreenAspect = 1.0f;
float DepthScale;

uint8_t* TextureImage;
uint32_t TextureCount;
uint8_t* TextureRemap;
uint8_t ShadeTable[65536];
float IntensityTable[128];
uint32_t LineColour;
int32_t FogSwitch = FOG_SWITCH_ON;
