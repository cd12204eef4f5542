// A small world, texture file and frame in the renderer's global tables, and records of what the renderer asks of the
// modules around it.
#pragma once

#include "records/texture_records.h"
#include "records/world_records.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

constexpr uint8_t GUARD = 0xA5;

struct TestTexture {
    uint8_t page, x, y, width, height;
};

// A texture file with the given records and pages filled with pseudo-random texels, no two palette colours alike.
std::vector<uint8_t> MakeTextureFile(const std::vector<TestTexture>& textures, int pages);

// Geometry tables with room for `polygons` polygons of up to 16 corners before the scratch space.
void MakeWorld(uint32_t polygons);

// Appends a polygon with a point of its own for every corner, returns its number.
struct Corner {
    float x, y, z, u, v, intensity;
};
int32_t AddPolygon(const std::vector<Corner>& corners, uint8_t texture = 0);

// A frame of width x height in rows of pitch bytes, with guard bytes around it and in the gap of each row.
void MakeFrame(int32_t width, int32_t height, int32_t pitch);
std::vector<uint8_t> FramePixels();  // rows of ScreenWidth
bool GuardsAreIntact();
void FillFrame(uint8_t colour);

// Makes the bytes the file that every path but those of GlideFiles names; loads it with LoadTextureFile from a fresh
// pool.
void LoadTextures(const std::vector<uint8_t>& file);

extern std::map<std::string, std::vector<uint8_t>> GlideFiles;  // by the game's path; others of .3df are missing

struct Calls {
    std::vector<int32_t> shaded;
    std::vector<std::string> files;  // paths opened
    std::string order;               // one letter a call: S shade, R node radii, P palette, W swap
};
extern Calls Recorded;
