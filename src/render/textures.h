// Textures and palettes of a level.
#pragma once

#include "host/glide.h"
#include "records/texture_records.h"
#include "records/world_records.h"

#include <cstdint>

// Loads texture.bin of the level and everything derived from it; returns 0.
// FatalError(0, "No Texture File Found"): no file, no memory for it, or not 1..500 textures.
// FatalError(0, "Not a valid texture file"): cut short, or a texture outside its page or not a power of two.
int LoadTextureFile(int32_t level);

void BuildFadePalette();   // ShadeTable from the palette and the level's dark and bright colours; makes colour 0 black
void BuildTextureRemap();  // FatalError(1, "No memory for the texture remap table")
void ComputeWrapFlags();   // POLY_WRAPS of every polygon in use whose corners leave its texture
void SetTexturePalette();  // the display's palette from texture.bin, when DirectDraw is in use

extern GrMipMapId_t TextureHandles[TEXTURES_MAX];  // the accelerator's, by texture

// Accelerator only: glidetex/NN.3df of the level for each texture; one that cannot be read leaves its handle as it was.
// FatalError(-1, "L_LoadGlideTexture (Memory #2)"), "... (Load #1)" or "... (Memory #1)".
void L_LoadGlideTexture(int32_t level);

// The accelerator's texture coordinates of every polygon in use, from the alternate polygon-vertex table.
// FatalError(-1, "L_CreateGlideUVs - tm_width  = 0.0") or "... - tm_height = 0.0" for an empty texture.
void L_CreateGlideUVs();

// TextureRemap's entry; `texture` itself when the level has no such texture.
uint8_t RemappedTexture(uint8_t texture);

// The texture a polygon is drawn with; null when there is none, or it has no texels.
const TextureRecord* PolygonTexture(const PolyRecord& polygon);
