// The player's files in the game's tables, for tools that are made of the game: PlayerMesh and the animations are
// filled, PlayerActor is set up in its first state, alone in the level. After the world, and once for each.
#pragma once

#include "character/character_tables.h"
#include "records/character_records.h"

#include <filesystem>
#include <string>
#include <vector>

class PlayerFiles {
public:
    // Ends through FatalError when a file of the folder is missing or not valid.
    void Load(const std::filesystem::path& folder, const Vec3& start);
    AnimRecord& Animation(size_t i) const { return *animations_[i].record; }

private:
    std::vector<std::string> paths_;
    std::vector<AnimFileEntry> animations_;
};
