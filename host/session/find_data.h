// Where the game's data is when --data does not say so.
#pragma once

#include <filesystem>
#include <vector>

// Where a program in `programFolder` looks, in this order: `data` beside it, as in a build; ../share/tarnwick, as where
// it is installed; and the folder that the build was given, if that is another.
std::vector<std::filesystem::path> DataFolders(const std::filesystem::path& programFolder);

// The first that holds a folder `game`; empty: none does.
std::filesystem::path FindDataFolder(const std::vector<std::filesystem::path>& folders);

std::filesystem::path ProgramFolder();  // the folder that the running program lies in
