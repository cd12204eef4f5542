// Many pictures side by side, to look at.
#pragma once

#include "formats/image.h"
#include "formats/texture_file.h"

#include <array>
#include <vector>

// Puts the pictures in rows, each repeated to fill a square, so that seams show.
Image ContactSheet(const std::vector<Image>& pictures);
// The texture in a slot as the game shows it, in the level's palette: five strips from dim to bright, the middle one at
// the light that changes nothing. dark: 0..63, the colour of darkness; the brightest light is taken to be white.
Image ShowLit(const TextureFile& file, const TextureSlot& slot, const std::array<int, 3>& dark);
