// The table of animated and moving lights, its file (lights.alt), and what the lights do to the world in each frame.
//
// File: big-endian 16-bit slot count (0..150), contribution count (0..32767) and a value that is skipped; the slots as
// they lie in the table; then, for the points and again for the corners, all 16-bit targets and all f32 weights. A
// slot owns a run of entries in each of the two lists. A corner's number is polygon x 8 + corner.
//
// A light raises light bytes for one frame: the first to touch a byte in a frame starts from its base, the others add,
// and every step is kept within 0..127. ShadePolygon reads what is raised in the same frame; the character is lit by
// every used slot in whose radius it stands, with the intensity of the frame before.
#pragma once

#include "records/light_records.h"

extern LightSlot LightSlots[LIGHT_SLOT_COUNT];  // packed: read fields by value

// Every slot becomes LIGHT_FREE, then those of the file follow; a missing file leaves them free.
// FatalError(0, "Not a valid light slot file", path): too short, or a count beyond the tables; a used slot with a
// number, of those its type uses, that is not finite; a ramp, blink or flicker with a run beyond the lists, or with a
// contribution to no point of the world or of a weight that is not finite. What no slot uses may be anything.
void LoadLightSlots(const char* path);

void UpdateLights();  // once a frame, before the world is drawn: moves every slot's time on and raises the light bytes

// Raises the light bytes as these lights would, for a picture besides that of the frame.
void RaiseLightBytes(const LightSlot (&slots)[LIGHT_SLOT_COUNT]);

// A free slot becomes a dynamic light of radius 500 and intensity 1 at CameraPos. -1: none is free; slot 0 never is.
int32_t SpawnLight();
void SetLightPosition(int32_t slot, float x, float y, float z);  // nothing for a negative slot
void FreeLight(int32_t slot);                                    // does nothing for a negative slot
