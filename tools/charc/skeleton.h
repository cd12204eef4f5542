// Makes the game's bones from a model's joints: their order, their pivots, and where a pose of the model takes them.
//
// The game turns every bone about its pivot in the mesh's own frame, its parent's turn after its own; only the root
// moves. So a bone's key is what the model's joint does beyond what its parent bone already does.
#pragma once

#include "charc/model.h"
#include "charc/recipe.h"

struct Bone {
    int joint = -1;   // joint of the model; -1: the model has no such bone
    int parent = -1;  // bone; -1 for bone 0 and for missing ones
    Vector pivot;     // units, mesh frame: from the root's pivot
};

struct Skeleton {
    std::array<Bone, CHARACTER_BONES> bones;
    std::vector<int> boneOfJoint;   // for folded joints: the bone that they follow
    std::vector<int32_t> commands;  // the walk from parents to children
    Affine meshToGame;              // from the model's mesh to the game's
    Affine gameToMesh;
    Affine worldToActor;  // from the model's world to the frame of the actor's position
    std::vector<std::string> notes;
};

// The recipe without a root that moves no point and has one bone below it, which takes its place: the game moves no
// other bone, and such a root's child is the one that moves. Tells it in the recipe's notes.
CharacterRecipe WithoutIdleRoot(const Model& model, CharacterRecipe recipe);

// ContentError naming joints that are missing, not mentioned, or outside the root.
Skeleton BuildSkeleton(const Model& model, const CharacterRecipe& recipe);

// For each bone the transform from the game's mesh to the actor's frame that the model's pose asks for.
using BonePlaces = std::array<Affine, CHARACTER_BONES>;
BonePlaces PlaceBones(const Model& model, const Skeleton& skeleton, const std::vector<Affine>& pose);

// What the game makes of such a pose: turns alone, and the root's position.
struct BoneTurns {
    std::array<Quaternion, CHARACTER_BONES> turns;
    Vector position;  // place of the root bone
};
BoneTurns TurnsOf(const Skeleton& skeleton, const BonePlaces& places);
BonePlaces PlacesOf(const Skeleton& skeleton, const BoneTurns& turns);
