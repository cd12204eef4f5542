// A front-end picture: a TOML file whose items are painted one over the other. docs/materials.md is its manual.
#pragma once

#include "formats/image.h"
#include "picc/lettering.h"

#include <filesystem>
#include <string>

struct PictureSources {
    std::filesystem::path materials;   // folder of <name>.png
    std::filesystem::path fonts;       // folder of <name>.ttf
    std::filesystem::path pictures{};  // folder of <name>.png, taken in the game
};

// ContentError names the file and the line.
Image PaintPicture(const std::filesystem::path& description, const PictureSources& sources);
