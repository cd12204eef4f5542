#include "lights/light_slots.h"

LightSlot LightSlots[LIGHT_SLOT_COUNT];

void LoadLightSlots(const char* /*path*/) {
    for (LightSlot& slot : LightSlots)
        slot.type = LIGHT_FREE;
}

void UpdateLights() {}
