// The table of animated lights.
#pragma once

#include "records/light_records.h"

extern LightSlot LightSlots[LIGHT_SLOT_COUNT];

void LoadLightSlots(const char* path);
void UpdateLights();
