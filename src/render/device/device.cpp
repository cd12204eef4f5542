#include "render/device/device.h"

int32_t GlideInitialised;
int32_t GlideHardwareReady;
int32_t GlideWindowOpen;

void CloseGlide() {}
