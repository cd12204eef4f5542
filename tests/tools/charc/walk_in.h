// Another character, walk_in.toml, and what it needs, in the test's own folder.
#pragma once

#include <filesystem>

std::filesystem::path WalkInRecipe();
