// Clips for the files that a recipe leaves out.
#pragma once

#include "charc/recipe.h"

// Fills each missing file from the nearest clip that the recipe has, with a note about it. False: there is nothing to
// take, because zeroidle.anm is missing too.
bool AddStandIns(CharacterRecipe& recipe);
