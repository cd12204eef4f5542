// Reads the recipe of a character from its TOML file.
#pragma once

#include "charc/recipe.h"

// ContentError for a recipe that breaks a rule. Files of animations that it leaves out are filled from others.
CharacterRecipe ReadRecipe(const std::filesystem::path& path);
