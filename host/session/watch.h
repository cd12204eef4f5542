// Option --watch: a level that its author changes while it is played. Whoever compiles it (scripts/watch.sh) names the
// new one in a file, which is looked at after every frame:
//
//     data FOLDER         the data folder of the level compiled last
//     level N             the level that it takes the place of, 1 to the number of levels
//     place TEXT          where the map lies in the level: as long as it stays the same, so does the player's place
//     music TEXT          what plays in the level: the music begins anew when this changes
//     TEXT                any more lines are shown over the picture, below each other; none: nothing is
//
// The file is replaced as a whole. One that is missing or has other lines says nothing.
#pragma once

#include "host/probe.h"

#include <string>

// file empty: nothing is watched. The data folder must have been set. While a level is watched, the game plays on
// without the focus, which the editor beside it has.
void StartWatch(const std::string& file);
// True when the file names another data folder than before: the game's files are in that one from now on.
bool LevelIsNew(HostReload& reload);
