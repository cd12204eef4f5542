// Where patterns that show a picture get it from.
#pragma once

#include "formats/image.h"
#include "formats/toml_table.h"

#include <string>

class PictureSource {
public:
    virtual ~PictureSource() = default;
    // The picture, or the painted recipe, that a key names, looked for beside the file of `from`. It lasts as long as
    // the source.
    virtual const Image& Picture(const TomlTable& from, const std::string& key) = 0;
    virtual const Image& Material(const TomlTable& from, const std::string& key) = 0;
};
