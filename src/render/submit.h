// The last step of the pipeline: a projected polygon becomes pixels.
#pragma once

#include "render/raster.h"

#include <cstdint>

constexpr uint32_t DRAW_TRANSPARENT = 0x4;  // forces the transparent rasteriser; never set by the pipeline
constexpr uint32_t NO_TEXTURE = 0xFFFF;

extern uint32_t SubmittedPolygons;  // calls of the two below since the start of the frame; GameFrame clears it

void SubmitPolygon(const PolyRecord* polygon, uint32_t drawFlags);
// A polygon whose corners are not in WorldGeometry.viewPoints, for the software renderer.
void SubmitCorners(const PolyRecord& polygon, const ScreenCorners* corners);
void ResetCurrentTexture();  // the accelerator's: new textures have been loaded
