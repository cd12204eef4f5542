// One game: the music, the level, and one GameFrame per idle pass until the player leaves.
#pragma once

#include <cstdint>

uint8_t RunGame();  // the final GameMode
bool StartGame();
