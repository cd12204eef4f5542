// One game: the music, the level, and one GameFrame per idle pass until the player leaves.
#pragma once

#include <cstdint>

// Plays CurrentLevel (level 0 for an index outside the table). Returns the final GameMode: MODE_LEAVE, MODE_QUIT, or
// MODE_PLAYING after "Unable to initialize game." or WM_QUIT.
uint8_t RunGame();

bool StartGame();  // false: no display could be opened; a failure of a loader is a FatalError
