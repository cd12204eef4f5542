// The machine without a window: a clock that moves by 1 at each call of `milliseconds` and never else, no devices.
// Input comes from a script only, so two runs with the same options give the same bytes.
#pragma once

#include "machine/machine.h"

extern const Machine HeadlessMachine;
