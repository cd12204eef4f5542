// A map of the usual kind from elsewhere, with each trait that ours do not have, and the files of its textures.
#pragma once

#include "formats/image.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// A room, a door 64 wide and 96 high to the east, a second room whose far wall and ceiling are sky. People are 56 tall.
// axes: faces with axes of their own.
std::string ForeignMap(bool axes);

// Beside the map: textures/Base/Wall.png 96 x 48, a WAD2 with ground1_1 and sky1 (256 x 128), a WAD3 with {fence. Of
// *slime0 and nowhere/gone there is no picture.
void WriteForeignTextures(const std::filesystem::path& folder);

struct WadPicture {
    std::string name;
    int width, height;
    uint8_t colour;  // of all pixels, but that every other is 255 where the name begins with '{'
};
// WAD3 pictures have grey palettes, WAD2 files one in which all is red.
std::vector<uint8_t> WadBytes(bool three, const std::vector<WadPicture>& pictures);
