// The accelerator's interface. No board exists yet: the query reports none, and the game chooses software.
#pragma once

#include <cstdint>

struct GrHwConfiguration {
    int32_t num_sst;  // number of boards
};

int32_t grSstQueryBoards(GrHwConfiguration* configuration);  // FXTRUE (1) on success; touches no hardware
