// A material recipe: a TOML file with the size of a picture and the layers that paint it, bottom first.
// docs/materials.md is its manual.
#pragma once

#include "formats/image.h"
#include "formats/toml_table.h"
#include "texc/picture_source.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

constexpr int ANIMATION_PICTURES = 4;  // pictures of a moving material, shown in turn

struct PaintedMaterial {
    Image picture;  // alpha 0 or 255; the pictures of a moving material stand below each other
    std::vector<std::filesystem::path> sources;  // every file that was read
    int pictures = 1;                            // ANIMATION_PICTURES of a moving material
};

// ContentError names the file and the line.
PaintedMaterial PaintMaterial(const std::filesystem::path& recipe);
Image FirstPicture(const PaintedMaterial& material);

// Where recipes find what they show: each picture is read once and each other recipe painted once, however many layers
// show it.
class Studio : public PictureSource {
public:
    const Image& Picture(const TomlTable& from, const std::string& key) override;
    const Image& Material(const TomlTable& from, const std::string& key) override;

    PaintedMaterial Paint(const std::filesystem::path& recipe);

private:
    struct Recipe;
    Recipe Read(const std::filesystem::path& path);
    Recipe ReadBase(const TomlTable& text);
    std::filesystem::path PathOf(const TomlTable& from, const std::string& key) const;
    Image Draw(Recipe& recipe) const;

    std::map<std::filesystem::path, Image> pictures_, materials_;
    std::vector<std::filesystem::path> open_;     // recipes being read: each shows the next
    std::vector<std::filesystem::path> sources_;  // every file that was read
};
