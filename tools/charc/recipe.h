// How a model becomes the game's character: which joint is which bone, which animation fills which file, and at which
// times its keys stand. The README of the format is content/character/zero.toml itself.
#pragma once

#include "formats/character_files.h"
#include "records/animation_facts.h"
#include "transforms/transform.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct SkinRecipe {
    std::string file;                             // .tuv
    std::vector<std::filesystem::path> pictures;  // the pictures of texture 0, 1 and so on
    size_t uvSet = 0;
};

enum class ClipPlay { AS_IT_IS, BACKWARDS, FIRST_POSE };

struct ClipRecipe {
    std::string file;  // .anm
    std::string clip;  // its name in the model
    bool loop = false;
    ClipPlay play = ClipPlay::AS_IT_IS;
    std::vector<uint32_t> times;  // times of the keys; the first is CHARACTER_FIRST_TIME, the last the length
    std::array<std::vector<uint32_t>, CHARACTER_BONES>
        ownTimes;  // key times of bones whose keys stand at other times; else empty

    const std::vector<uint32_t>& TimesOf(size_t bone) const { return ownTimes[bone].empty() ? times : ownTimes[bone]; }
};

struct CharacterRecipe {
    std::string file;
    std::filesystem::path model;
    double scale = 100;                  // units a metre; unused where there is a height
    double height = 0;                   // height of the model at rest, units; its lowest point stands on the ground
    Quaternion turn;                     // turns the model so that it faces +z
    double origin = 110;                 // units from the ground to where the game holds the character
    std::vector<std::string> joints;     // for each bone the name of its joint; empty: the model has no such bone
    std::vector<std::string> folded;     // joints whose points follow the next bone above them
    bool foldsRest = false;              // all other joints that are no bone follow it, too
    std::vector<std::string> materials;  // for each texture the name of its material
    std::vector<SkinRecipe> skins;
    std::vector<ClipRecipe> clips;   // the clips of all files
    std::vector<std::string> notes;  // what the recipe leaves open and the tool chose, for the user
};

// What the game loads in its folder of animations, besides the skins (LEVEL_SKIN_FILES).
constexpr const char* CHARACTER_MESH_FILE = "zero.msh";
constexpr const char* CHARACTER_WEIGHTS_FILE = "zero.wei";

// An animation that the game loads, and what it usually is: for recipes that say no more than which clip of the model
// fills it.
struct UsualClip {
    const char* file;
    uint32_t length;
    bool loop;
    uint32_t step;   // time between keys; in loops 20, so that the blends into them end with a fifth of the way
    uint32_t blend;  // no key but the first stands before this time
};
constexpr std::array<UsualClip, 19> CHARACTER_CLIPS = {{
    {"zeroback.anm", 250, true, 20, 0},      {"zerofol2.anm", 2100, false, 190, 0},
    {"zerofol3.anm", 400, false, 30, 0},     {"zerofold.anm", 400, false, 30, 0},
    {"zeroidle.anm", 7510, false, 250, 120}, {"zerorebo.anm", 75, false, 65, 75},
    {"zeroredy.anm", 75, false, 65, 75},     {"zeroreru.anm", 110, false, 20, 0},
    {"zeroretl.anm", 260, false, 20, 75},    {"zeroretr.anm", 260, false, 20, 75},
    {"zerorun.anm", 170, true, 20, 0},       {"zeroruwl.anm", 170, true, 20, 0},
    {"zerostan.anm", 7510, false, 250, 120}, {"zerowalk.anm", 250, true, 20, 0},
    {"zerowbre.anm", 7510, false, 250, 120}, {"zerojum1.anm", 60, false, 10, 0},
    {"zerojum2.anm", 60, false, 25, 0},      {"zerojum3.anm", 100, false, 10, 0},
    {"zerojum4.anm", 170, false, 10, 100},
}};
// In the order of the game's table, whose last rows, those of the hop, are the leap's again.
static_assert(CHARACTER_CLIPS.size() == ANIMATION_HOP_CROUCH &&
              std::equal(CHARACTER_CLIPS.begin(), CHARACTER_CLIPS.end(), PLAYER_ANIMATION_FILES,
                         [](const UsualClip& clip, std::string_view file) { return clip.file == file; }));

std::vector<uint32_t> EvenTimes(uint32_t length, uint32_t step, uint32_t blend);
