#include "world/world_tables.h"

WorldGeometryTables WorldGeometry;
CornerBox CornerBoxes[BSP_NODES_MAX];

int8_t CornerLight[CORNER_LIGHT_POLYGONS * 8];
int8_t CornerLightBase[CORNER_LIGHT_POLYGONS * 8];
float IntensityCache[INTENSITY_CACHE_SIZE];
uint16_t IntensityCacheStamps[INTENSITY_CACHE_SIZE];

float LightLevel;
float LightContrast;
float FadeDistance;
float FarDistance;
float FogNearDistance;
int32_t LightMode;
int16_t PlainBrightening;
int16_t BrightColour[3];
int16_t DarkColour[3];
float LightScale;
float LightBias;

SkyObjectRange SkyObject;
