// The page in a browser that the game runs in. What it needs of the browser stands in page_calls.js.
#pragma once

#include "machine/machine.h"

extern const Machine WebMachine;
