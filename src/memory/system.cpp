#include "memory/system.h"

#include "memory/fatal.h"
#include "memory/pool.h"
#include "memory/shutdown.h"
#include "platform/timer.h"

#include <cstdlib>
#include <cstring>

bool SystemInit() {
    ClearSubsystemFlags();
    PoolMemory = static_cast<uint8_t*>(std::malloc(POOL_BYTES));
    if (!PoolMemory) FatalError(1, "Could not allocate memory pool.\n");
    std::memset(PoolMemory, 0x55, POOL_FILL_BYTES);
    PoolInit(PoolMemory, PoolMemory + POOL_BYTES);
    PoolReady = 1;
    FileLayerReady = 1;
    TimerReset();
    TimerStarted = 1;
    return true;
}
