// The character's files as they were read. A file that could not be read is missing here; its problem is already told.
#pragma once

#include "formats/character_files.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

struct CharacterData {
    std::string folder = "game/data/anims";
    std::optional<CharacterMesh> mesh;
    std::optional<std::vector<WeightBlock>> weights;
    std::map<std::string, std::vector<SkinTriangle>> skins;  // the skins by their paths
    std::map<std::string, CharacterAnimation> clips;

    std::string MeshPath() const { return folder + "/zero.msh"; }
    std::string WeightsPath() const { return folder + "/zero.wei"; }
};
