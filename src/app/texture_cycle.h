// Animated textures: the remap entries 10 to 14 take each other's places.
#pragma once

void TextureCycle();  // once a frame; one turn every 7 ticks or more
