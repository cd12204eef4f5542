// Start-up of what one game needs: the pool, the file layer, the timer. memory/shutdown.h is its counterpart.
#pragma once

bool SystemInit();  // true; FatalError(1, "Could not allocate memory pool.\n") without memory
