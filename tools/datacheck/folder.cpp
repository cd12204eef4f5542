#include "datacheck/folder.h"

#include "charc/recipe.h"
#include "datacheck/pool_replay.h"
#include "datacheck/rules.h"
#include "formats/error.h"
#include "formats/files.h"
#include "formats/image.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <array>
#include <cctype>

namespace fs = std::filesystem;

namespace {

constexpr std::array PICTURES = {"FrontEnd/Title.Bmp", "FrontEnd/Options.Bmp",  "FrontEnd/LoadSave.Bmp",
                                 "FrontEnd/Lang.Bmp",  "FrontEnd/Select01.bmp", "FrontEnd/Select02.bmp"};
constexpr int PICTURE_WIDTH = 640;
constexpr int PICTURE_HEIGHT = 480;

bool EqualWithoutCase(const std::string& a, const std::string& b) {
    const auto same = [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

// Finds a file whatever the case of its letters, as the game does. Empty: there is none.
fs::path Find(const fs::path& folder, const fs::path& name) {
    fs::path at = folder;
    for (const fs::path& component : name) {
        fs::path next = at / component;
        if (!fs::exists(next) && fs::is_directory(at)) {
            for (const auto& entry : fs::directory_iterator(at)) {
                if (EqualWithoutCase(entry.path().filename().string(), component.string())) next = entry.path();
            }
        }
        at = next;
    }
    return fs::is_regular_file(at) ? at : fs::path();
}

class FolderCheck {
public:
    FolderCheck(fs::path folder, Report& report) : folder_(std::move(folder)), report_(report) {}

    void Run() {
        if (!fs::is_directory(folder_)) {
            report_.Problem(folder_.string(), "", "is not a folder", "name the folder that holds \"game\"");
            return;
        }
        for (int number = 1; number <= LEVEL_COUNT; ++number)
            CheckLevel(LoadLevel(number), report_);
        CheckCharacter(LoadCharacter(), report_);
        for (const char* const picture : PICTURES)
            CheckPicture(picture);
    }

private:
    // What `decode` makes of the file; nothing, after telling a problem, when it cannot be read.
    template <class Decode>
    auto Load(const std::string& path, bool needed, Decode decode)
        -> std::optional<decltype(decode(std::vector<uint8_t>(), path))> {
        const fs::path found = Find(folder_, path);
        if (found.empty()) {
            if (needed) report_.Problem(path, "", "is missing", "build the content again");
            return std::nullopt;
        }
        try {
            return decode(ReadWholeFile(found), path);
        } catch (const ContentError& error) {
            report_.Problem(error.what());
            return std::nullopt;
        }
    }

    LevelData LoadLevel(int number) {
        LevelData level;
        level.number = number;
        level.folder = fmt::format("game/data/levels/level{}", number);
        level.world = Load(level.WorldPath(), true, DecodeWorld);
        level.light = Load(level.LightPath(), true, DecodeLightMap);
        level.slots = Load(level.SlotPath(), false, DecodeLightSlots);
        level.textures = Load(level.TexturePath(), true, DecodeTextureFile);
        level.sky = Load(level.SkyPath(), HasSky(number), DecodeStaticObject);
        for (size_t i = 0; level.textures && i < level.textures->slots.size(); ++i) {
            if (auto picture = Load(level.GlideTexturePath(i), true, DecodeGlideTexture))
                level.glideTextures.emplace(i, *picture);
        }
        if (const size_t bytes = CharacterBytes(folder_ / "game/data/anims"); bytes > 0) level.characterBytes = bytes;
        return level;
    }

    CharacterData LoadCharacter() {
        CharacterData character;
        character.mesh = Load(character.MeshPath(), true, DecodeMesh);
        character.weights = Load(character.WeightsPath(), true, DecodeWeights);
        for (const std::string file : LEVEL_SKIN_FILES) {
            const std::string path = character.folder + "/" + file;
            if (auto skin = Load(path, true, DecodeSkin)) character.skins.emplace(path, std::move(*skin));
        }
        for (const UsualClip& usual : CHARACTER_CLIPS) {
            const std::string path = character.folder + "/" + usual.file;
            if (auto clip = Load(path, true, DecodeAnimation)) character.clips.emplace(path, std::move(*clip));
        }
        return character;
    }

    void CheckPicture(const char* path) {
        const std::optional<Image> picture = Load(path, true, DecodeBitmap);
        if (!picture || (picture->width == PICTURE_WIDTH && picture->height == PICTURE_HEIGHT)) return;
        report_.Problem(path, "", fmt::format("is {} x {} pixels", picture->width, picture->height),
                        fmt::format("make it {} x {}", PICTURE_WIDTH, PICTURE_HEIGHT));
    }

    fs::path folder_;
    Report& report_;
};

}  // namespace

void CheckLevel(const LevelData& level, Report& report) {
    if (level.world && CheckTree(level, report)) {
        CheckSizes(level, report);
        CheckBoxes(level, report);
        if (CheckPolygons(level, report)) {
            CheckSight(level, report);
            CheckWalking(level, report);
            CheckCeilings(level, report);
        }
    }
    if (level.light) CheckLight(level, report);
    if (level.slots) CheckLightSlots(level, report);
    if (level.textures) CheckTextures(level, report);
    if (level.sky) CheckSky(level, report);
}

void CheckDataFolder(const fs::path& folder, Report& report) {
    FolderCheck(folder, report).Run();
}
