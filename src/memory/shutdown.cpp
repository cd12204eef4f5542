#include "memory/shutdown.h"

#include "memory/pool.h"
#include "platform/display.h"
#include "render/device/device.h"

#include <cstdio>
#include <cstdlib>

int32_t PoolReady;
int32_t FileLayerReady;
int32_t TimerStarted;
uint8_t* PoolMemory;

namespace {

void ReleasePool() {
    PoolForget();
    std::free(PoolMemory);
    PoolMemory = nullptr;
}

}  // namespace

void ClearSubsystemFlags() {
    PoolReady = FileLayerReady = TimerStarted = 0;
    GlideInitialised = GlideHardwareReady = GlideWindowOpen = 0;
}

void SystemShutdown() {
    // Kept as it is: printed even when there is no pool.
    std::printf("Free Mem when running. %d \n", static_cast<int>(PoolFreeTotal()));
    CloseGlide();
    if (DisplayState != DISPLAY_NONE) CloseDisplay();
    if (PoolReady) ReleasePool();
    ClearSubsystemFlags();
}
