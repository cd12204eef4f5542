// How high a player jumps.
#pragma once

#include "records/walking_facts.h"

// How far up the highest jump lifts a player, in frames of so many ticks; engine units.
double JumpHeight(int ticks);
