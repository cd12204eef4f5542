// The folder that the game's relative paths start from (host/files.h).
#pragma once

#include <string>

void SetDataFolder(const std::string& folder);
