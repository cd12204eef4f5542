// What the game makes of a character's files: a pose by its rules of keys, pivots and blocks.
#pragma once

#include "foreign_rig.h"
#include "formats/character_files.h"

#include <map>

struct GameCharacter {
    CharacterMesh mesh;
    std::map<std::string, std::vector<SkinTriangle>> skins;
    std::vector<WeightBlock> blocks;
    std::map<std::string, CharacterAnimation> clips;
};

struct OutputFile;
GameCharacter DecodeAll(const std::vector<OutputFile>& files);

std::array<Matrix, CHARACTER_BONES> BonesAt(const CharacterAnimation& animation, double time);
std::vector<Vec> PointsAt(const GameCharacter& character, const std::string& clip, double time);
// Share of each bone in each point, as the blocks blend it.
std::vector<std::array<double, CHARACTER_BONES>> Shares(const GameCharacter& character);
