// Many pictures side by side, to look at.
#pragma once

#include "formats/image.h"
#include "formats/texture_file.h"

#include <vector>

// In rows, each picture repeated to fill a square, so that seams show.
Image ContactSheet(const std::vector<Image>& pictures);
// The texture in a slot, in the level's palette.
Image ShowTexture(const TextureFile& file, const TextureSlot& slot);
