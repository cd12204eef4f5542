// The compiler as a whole: from a recipe and its model to the character's files.
#pragma once

#include "charc/clips.h"
#include "formats/files.h"

struct CompiledCharacter {
    std::vector<OutputFile> files;  // relative to the folder they are for
    std::vector<ClipReport> clips;
    std::vector<std::string> joints;  // names of the joints that are the bones
    std::vector<std::string> notes;   // what the user should know, a line each
    size_t triangles = 0, points = 0;
};

// ContentError when the model cannot become the game's character.
CompiledCharacter CompileCharacter(const CharacterRecipe& recipe);

// Writes all files into the folder, or none, and returns a report for the user.
std::string CompileToFolder(const std::filesystem::path& recipe, const std::filesystem::path& folder);

// What a model has that a recipe can name: joints, each below the one that it hangs on, clips and materials.
std::string ListModel(const std::filesystem::path& model);
