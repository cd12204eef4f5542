// The data folder as a whole.
#pragma once

#include "datacheck/report.h"

#include <filesystem>

// Reads every file that the game reads and checks it: game/data/levels/level1..8 and FrontEnd. Names may differ in
// case. A file that the game cannot run without is a problem when it is missing; others are checked where they exist.
void CheckDataFolder(const std::filesystem::path& folder, Report& report);
