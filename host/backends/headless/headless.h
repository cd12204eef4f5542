// The machine without a window: no devices, and a clock that moves by 1 at each call of `milliseconds` and only then.
// Input comes from a script only, so two runs with the same options give the same bytes.
#pragma once

#include "machine/machine.h"

extern const Machine HeadlessMachine;
