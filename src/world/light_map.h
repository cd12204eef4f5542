// Baked light bytes and the level's light values (lights.lmp), and polygon shading from them.
//
// File, integers big-endian: three ignored 32-bit values; the counts NP and NF; NP light bytes, one per point; 8 x NF
// light bytes, eight per polygon; then signed 16-bit LightLevel x 100 and LightContrast x 100, signed 32-bit
// FadeDistance and FarDistance, signed 16-bit LightMode, PlainBrightening, BrightColour (3), DarkColour (3).
//
// A light byte is 0..127. Shown is (LightBias + byte x LightScale) x distance fade, clamped to 0..127: 64 leaves the
// texture as it is. A point's or corner's current byte counts only in the frame whose FrameCount its stamp equals,
// otherwise its base byte does.
#pragma once

#include "math/lanes.h"

// A missing file changes nothing. FatalError(0, "Not a valid light map file", path): too short, or more bytes than
// there are points or CornerLight entries. Prints "LightMode = %d \n". With the accelerator the file's distances and
// contrast are replaced.
void LoadLightMap(const char* path);

void ApplyLightLevel();              // LightScale and LightBias from LightLevel, LightContrast, LightMode
void ShadePolygon(int32_t polygon);  // the intensity of each PolyVertex, from the ViewPoints of its points

// The same of four corners that lie at these depths, from corner `first` on, with the first corner behind the last one.
// They are not written anywhere.
Float4 CornerIntensities(uint32_t polygon, int first, Float4 depths);

// A character point's intensity from CharacterLightList and its normal, into the intensity cache; DrawActor copies it
// into the polygon vertices of the next drawing.
void ShadeCharacterPoint(uint32_t point);
