// What the game makes of a character's files: a pose by its rules of keys, pivots and blocks.
#pragma once

#include "formats/character_files.h"

#include <array>
#include <map>
#include <string>
#include <vector>

using Vec = std::array<double, 3>;

struct GameCharacter {
    CharacterMesh mesh;
    std::map<std::string, std::vector<SkinTriangle>> skins;
    std::vector<WeightBlock> blocks;
    std::map<std::string, CharacterAnimation> clips;
};

struct OutputFile;
GameCharacter DecodeAll(const std::vector<OutputFile>& files);

std::vector<Vec> PointsAt(const GameCharacter& character, const std::string& clip, double time);
