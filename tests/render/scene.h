// A texture file, a frame and an empty world in the renderer's global tables.
#pragma once

#include "records/texture_records.h"
#include "support/tiny_world.h"

#include <vector>

struct TestTexture {
    uint8_t page, x, y, width, height;
};

// A texture file with the given records, pages of pseudo-random texels, and a palette in which no two colours are
// alike.
std::vector<uint8_t> MakeTextureFile(const std::vector<TestTexture>& textures, int pages);

// Makes a world without polygons; AppendPolygon has room for some thousand corners before the scratch space.
void MakeWorld();

// A frame of width x height in rows of pitch bytes, with guard bytes around it and in the gap of each row, and the
// projection of a screen of that size.
void MakeFrame(int32_t width, int32_t height, int32_t pitch);
std::vector<uint8_t> FramePixels();  // rows of ScreenWidth bytes
bool GuardsAreIntact();
void FillFrame(uint8_t colour);

// Makes the bytes the file that every path names; loads it with LoadTextureFile from a fresh pool.
void LoadTextures(const std::vector<uint8_t>& file);

extern int ShadedPolygons;  // calls of ShadePolygon since MakeWorld
