// Textures and palettes of a level.
#pragma once

#include <cstdint>

int LoadTextureFile(int32_t level);  // 0; FatalError(0, "No Texture File Found")
void BuildFadePalette();
void BuildTextureRemap();
void ComputeWrapFlags();
void SetTexturePalette();       // the display's palette from texture.bin, when DirectDraw is in use
void L_CreateGlideUVs();        // accelerator only
