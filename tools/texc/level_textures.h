// One level's textures: from a list of material names to texture.bin and to the list of names that mapc reads.
#pragma once

#include "formats/image.h"
#include "formats/material_list.h"
#include "formats/texture_file.h"
#include "records/table_facts.h"

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

// Slots of the game: the world's, of which the animated ones take turns and the last is for what is never visible,
// named "clip" and "sky" in maps; then the character's skin.
constexpr int SLOT_FIRST_ANIMATED = TEXTURE_CYCLE_FIRST;
constexpr int SLOT_LAST_ANIMATED = TEXTURE_CYCLE_FIRST + TEXTURE_CYCLE_LENGTH - 1;
constexpr int SLOT_FIRST_SKIN = CHAR_TEXTURE_BASE;
constexpr int SLOT_CLIP = SLOT_FIRST_SKIN - 1;
constexpr int SLOT_LAST_WORLD = SLOT_CLIP - 1;
constexpr int SLOT_COUNT = SLOT_FIRST_SKIN + CHAR_TEXTURE_COUNT;

struct LevelTextures {
    std::string file;
    Rgba dark, ground;
    std::string animated;  // moving material, or empty
    std::vector<std::string> materials;
    std::vector<std::string> skin = {};     // pictures of the character's skin, or none
    std::map<std::string, int> light = {};  // the light that materials shed; see the material list
    float acceleratorBrightness = 1;  // of the accelerator's textures, which fewer steps of light fall on, but for
    std::set<std::string> acceleratorUnchanged = {};  // these materials: skies are shown in full light
};

struct NamedPicture {
    std::string name;
    Image image;
};

struct CompiledTextures {
    TextureFile textures;
    std::vector<Image> images;                 // in true colour
    std::vector<float> acceleratorBrightness;  // of each image
    std::vector<size_t> imageOfSlot;
    std::vector<Material> list;
    std::array<int, 3> dark{};  // 0..63
};

LevelTextures ReadLevelTextures(const std::filesystem::path& path);
// `pictures` holds <name>.png for each material and each part of the skin.
CompiledTextures CompileTextures(const LevelTextures& level, const std::filesystem::path& pictures);
// The accelerator's: a file 00.3df, 01.3df ... for each slot.
void WriteGlideTextures(const std::filesystem::path& folder, const CompiledTextures& compiled);
