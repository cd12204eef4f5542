// Loading a level and putting the player back to its start.
#pragma once

#include <cstdint>

void LoadLevel(int32_t index);  // 0..7; every failure of a loader is a FatalError
void ResetToLevelStart();       // the loaded level's start, fractions included; LoadLevel truncates them
