// Makes the game's animations from a model's: keys at the recipe's times, and how far the result strays from the model.
#pragma once

#include "charc/skin.h"

// Distances in units between where a point of the mesh should be and where the game will show it.
struct Stray {
    double distance = 0;
    int bone = 0;
};

constexpr double WALK_MIN = 3;  // units; a loop that walks less far just does not end exactly where it begins

struct ClipReport {
    std::string file, clip;
    size_t keys = 0;
    Stray atKeys;         // what turning bones cannot follow: moved or scaled joints
    Stray betweenKeys;    // half-way between two keys
    Stray loopGap;        // from the last pose to the first, of a loop
    double walksOff = 0;  // how far a loop moves over the ground from start to end; taken out
};

struct BuiltClip {
    CharacterAnimation animation;
    ClipReport report;
};

BuiltClip BuildClip(const Model& model, const Skeleton& skeleton, const SkinnedMesh& mesh, const ModelClip& clip,
                    const ClipRecipe& recipe);
