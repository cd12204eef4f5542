// Where each picture lies in the 256 x 256 pages.
#pragma once

#include "formats/texture_file.h"

#include <string>
#include <vector>

struct TextureSize {
    int width, height;  // powers of two, so that pages fill up without loss
};

// One rectangle a size, in the same order, none overlapping. Refuses, in the name of `file`, what needs more pages than
// a level may have.
std::vector<TextureSlot> PackPages(const std::vector<TextureSize>& sizes, const std::string& file);
