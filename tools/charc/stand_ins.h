// What each animation of the game usually is, for recipes that say no more than which of the model's clips it takes,
// and which one stands in where a model has none.
#pragma once

#include "charc/recipe.h"

struct UsualClip {
    const char* file;
    uint32_t length;
    bool loop;
    uint32_t step;   // between keys
    uint32_t blend;  // before which no key but the first stands
};

const UsualClip* UsualClipOf(const std::string& file);  // null: the game loads no such file

std::vector<uint32_t> EvenTimes(uint32_t length, uint32_t step, uint32_t blend);

// Adds the files that the recipe leaves out, each from the nearest that it has, and a note about it. False: there is
// nothing to take, as zeroidle.anm is missing too.
bool AddStandIns(CharacterRecipe& recipe);
