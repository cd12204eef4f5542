// The table of animated lights.
#pragma once

#include "records/light_records.h"

extern LightSlot LightSlots[LIGHT_SLOT_COUNT];  // packed: read fields by value

void LoadLightSlots(const char* path);  // every slot becomes LIGHT_FREE
void UpdateLights();
