// A small level for the whole program: two rooms and a pillar as level 3, compiled when a test asks for it.
#pragma once

#include <filesystem>

void WriteTestLevel(const std::filesystem::path& dataFolder);
