// The kinds of items that a picture is made of. Each reads its own settings and paints onto the picture.
#pragma once

#include "formats/image.h"
#include "formats/toml_table.h"
#include "picc/lettering.h"

#include <map>

// Size of every front-end picture, pixels.
constexpr int PICTURE_WIDTH = 640;
constexpr int PICTURE_HEIGHT = 480;

struct Painter {
    Image image;
    std::filesystem::path materials;
    std::filesystem::path pictures;  // folder of those that the item "picture" shows
    Lettering lettering;
    std::map<std::filesystem::path, Image> loaded;

    const Image& Texture(const TomlTable& item, const std::string& name);
    const Image& Picture(const TomlTable& item, const std::string& name);
};

// Paints the item of the key `kind`.
void PaintItem(Painter& painter, const TomlTable& item);
