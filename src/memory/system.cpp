#include "memory/system.h"

#include "memory/fatal.h"
#include "memory/pool.h"
#include "platform/display.h"
#include "platform/timer.h"
#include "render/device/device.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int32_t PoolReady;
int32_t FileLayerReady;
int32_t TimerStarted;

namespace {

uint8_t* RawBlock;

void ClearSubsystemFlags() {
    PoolReady = FileLayerReady = TimerStarted = 0;
    GlideInitialised = GlideHardwareReady = GlideWindowOpen = 0;
}

void ReleasePool() {
    PoolForget();
    std::free(RawBlock);
    RawBlock = nullptr;
}

}  // namespace

bool SystemInit() {
    ClearSubsystemFlags();
    RawBlock = static_cast<uint8_t*>(std::malloc(POOL_BYTES));
    if (!RawBlock) FatalError(1, "Could not allocate memory pool.\n");
    std::memset(RawBlock, 0x55, POOL_FILL_BYTES);
    PoolInit(RawBlock, RawBlock + POOL_BYTES);
    PoolReady = 1;
    FileLayerReady = 1;
    TimerReset();
    TimerStarted = 1;
    return true;
}

void SystemShutdown() {
    // Kept as it is: printed even when there is no pool.
    std::printf("Free Mem when running. %d \n", static_cast<int>(PoolFreeTotal()));
    CloseGlide();
    if (DisplayState != DISPLAY_NONE) CloseDisplay();
    if (PoolReady) ReleasePool();
    ClearSubsystemFlags();
}
