// The patterns by their names.
#pragma once

#include "texc/pattern.h"
#include "texc/picture_source.h"

// Reads the key `pattern` and that pattern's own settings.
std::unique_ptr<Pattern> MakePattern(const TomlTable& settings, PictureSource& pictures);
