// The game's mesh out of a model's triangles: welded points, texture coordinates and weights, within the game's limits.
#pragma once

#include "charc/skeleton.h"

struct BoneWeight {
    int bone = 0;
    double weight = 0;
};

struct SkinnedMesh {
    CharacterMesh mesh;
    std::vector<std::vector<BoneWeight>> weights;   // of each point, sum 1, in the order of the blocks
    std::vector<int> textures;                      // of each triangle
    std::vector<std::array<uint32_t, 3>> vertices;  // of each triangle, in the model
    std::vector<std::string> notes;
};

// Simplifies a mesh that is too large. ContentError for a material that the recipe does not know, and for a mesh that
// cannot be simplified enough.
SkinnedMesh BuildSkinnedMesh(const Model& model, const Skeleton& skeleton, const CharacterRecipe& recipe);

std::vector<SkinTriangle> BuildSkin(const Model& model, const SkinnedMesh& mesh, const SkinRecipe& skin);
std::vector<WeightBlock> BuildWeightBlocks(const SkinnedMesh& mesh);
