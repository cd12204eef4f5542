// Colours as people write them: "#rrggbb".
#pragma once

#include "formats/image.h"
#include "formats/toml_table.h"

Rgba ReadColour(const TomlTable& settings, const std::string& key);
Rgba ReadColour(const TomlTable& settings, const std::string& key, Rgba fallback);
std::vector<Rgba> ReadColours(const TomlTable& settings, const std::string& key);  // a list, empty when missing
