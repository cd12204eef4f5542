#include "render/device/device.h"

#include "host/glide.h"

int32_t GlideInitialised;
int32_t GlideHardwareReady;
int32_t GlideWindowOpen;

void CloseGlide() {
    if (GlideInitialised == 0 || GlideHardwareReady == 0) return;
    if (GlideWindowOpen != 0) grSstWinClose();
    grSstIdle();
    grGlideShutdown();
}
