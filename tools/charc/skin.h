// Makes the game's mesh from a model's triangles: welded points, texture coordinates and weights, within the game's
// limits.
#pragma once

#include "charc/skeleton.h"

struct BoneWeight {
    int bone = 0;
    double weight = 0;
};

struct SkinnedMesh {
    CharacterMesh mesh;
    std::vector<std::vector<BoneWeight>> weights;   // for each point its weights, sum 1, in the order of the blocks
    std::vector<int> textures;                      // for each triangle its texture
    std::vector<std::array<uint32_t, 3>> vertices;  // for each triangle its vertices in the model
    std::vector<std::string> notes;
};

// Simplifies a mesh that is too large. ContentError for a material that the recipe does not know, and for a mesh that
// cannot be simplified enough.
SkinnedMesh BuildSkinnedMesh(const Model& model, const Skeleton& skeleton, const CharacterRecipe& recipe);

std::vector<SkinTriangle> BuildSkin(const Model& model, const SkinnedMesh& mesh, const SkinRecipe& skin);
std::vector<WeightBlock> BuildWeightBlocks(const SkinnedMesh& mesh);
