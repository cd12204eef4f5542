// The last step of the pipeline: a projected polygon becomes pixels.
#pragma once

#include "records/world_records.h"

#include <cstdint>

constexpr uint32_t DRAW_TRANSPARENT = 0x4;  // forces the transparent rasteriser; never set by the pipeline
constexpr uint32_t NO_TEXTURE = 0xFFFF;

extern uint32_t SubmittedPolygons;  // SubmitPolygon calls since the start of the frame; GameFrame clears it

void SubmitPolygon(const PolyRecord* polygon, uint32_t drawFlags);
void ResetCurrentTexture();  // the accelerator's: new textures have been loaded
