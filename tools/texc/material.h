// A material recipe: a TOML file with the size of a picture and the layers that paint it, bottom first.
// docs/materials.md is its manual.
#pragma once

#include "formats/image.h"

#include <filesystem>
#include <string>
#include <vector>

constexpr int ANIMATION_PICTURES = 4;  // of a moving material, shown in turn

struct PaintedMaterial {
    Image picture;  // alpha 0 or 255; the pictures of a moving material stand below each other
    std::vector<std::filesystem::path> sources;  // every file that was read
};

// The recipe of that name beside another one.
std::filesystem::path MaterialRecipe(const std::filesystem::path& beside, const std::string& name);

// ContentError names the file and the line.
PaintedMaterial PaintMaterial(const std::filesystem::path& recipe);
