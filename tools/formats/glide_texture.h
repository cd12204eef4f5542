// Accelerator textures (.3df): a header of text lines, then 16-bit texels, big-endian, the largest mip level first.
// Always argb1555: red, green and blue of 5 bits each. The accelerator draws texels of alpha 0 and takes all others for
// holes, so the alpha bit is set in the holes.
#pragma once

#include "formats/image.h"

#include <cstdint>
#include <string>
#include <vector>

// All levels down to one texel, starting with the picture itself, whose sides are powers of two up to 256 and at most
// 8 : 1. Each texel is the average of four in linear light, holes (alpha 0) left out of it; as large a part of a level
// is solid as of the picture.
std::vector<Image> MakeMipLevels(const Image& picture);

std::vector<uint8_t> EncodeGlideTexture(const std::vector<Image>& levels);

struct GlideTexture {
    int width = 0, height = 0;  // size of the largest level
    int smallest = 0;           // longer side of the smallest
};

// ContentError for another format than the above, sides that are no powers of two up to 256, and missing texels.
GlideTexture DecodeGlideTexture(const std::vector<uint8_t>& content, const std::string& fileName);
