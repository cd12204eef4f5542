#include "charc/recipe_reader.h"

#include "charc/stand_ins.h"
#include "formats/error.h"
#include "formats/toml_table.h"
#include "records/levels.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

constexpr int CLIP_LENGTH_MAX = 100000;

const UsualClip* UsualClipOf(const std::string& file) {
    const auto found = std::find_if(CHARACTER_CLIPS.begin(), CHARACTER_CLIPS.end(),
                                    [&](const UsualClip& usual) { return usual.file == file; });
    return found == CHARACTER_CLIPS.end() ? nullptr : &*found;
}

std::vector<uint32_t> ListedTimes(const TomlTable& table, uint32_t length, uint32_t blend) {
    std::vector<uint32_t> times;
    for (const float number : table.Numbers("keys")) {
        if (!(number >= 0 && number <= CLIP_LENGTH_MAX))
            table.RefuseKey("keys", fmt::format("holds {}", number),
                            fmt::format("give times from {} to the length", CHARACTER_FIRST_TIME));
        times.push_back(static_cast<uint32_t>(number));
    }
    if (times.size() < 2 || times.front() != CHARACTER_FIRST_TIME || times.back() != length ||
        std::adjacent_find(times.begin(), times.end(), std::greater_equal<>()) != times.end()) {
        table.RefuseKey("keys", fmt::format("do not rise from {} to {}", CHARACTER_FIRST_TIME, length),
                        "begin with the first, end with the second, and let each time be later than the one before");
    }
    if (times[1] < blend) {
        table.RefuseKey("keys", fmt::format("have one at {}, before {}", times[1], blend),
                        "move it: the game blends from the last pose to one key, and would start again at the next");
    }
    return times;
}

// Bones that turn at times of their own.
void ReadPart(const TomlTable& table, const std::vector<std::string>& joints, uint32_t length, uint32_t blend,
              ClipRecipe& clip) {
    for (const std::string& joint : table.Texts("joints")) {
        const auto found = std::find(joints.begin(), joints.end(), joint);
        if (joint.empty() || found == joints.end())
            table.RefuseKey("joints", fmt::format("names '{}', which is no bone", Shown(joint)),
                            "take names from the recipe's 'joints'");
        std::vector<uint32_t>& times = clip.ownTimes[static_cast<size_t>(found - joints.begin())];
        if (!times.empty())
            table.RefuseKey("joints", fmt::format("names '{}' a second time", Shown(joint)),
                            "leave it in one part of the clip");
        times = ListedTimes(table, length, blend);
    }
    table.Finish();
}

ClipRecipe ReadClipRecipe(const TomlTable& table, const std::vector<std::string>& joints) {
    ClipRecipe clip;
    clip.file = table.NeedText("file");
    const UsualClip* usual = UsualClipOf(clip.file);
    if (!usual)
        table.RefuseKey("file", fmt::format("is '{}', which the game does not load", Shown(clip.file)),
                        "docs/character.md lists the files that it loads");
    clip.clip = table.NeedText("clip");
    clip.loop = table.Flag("loop", usual->loop);
    const auto length =
        static_cast<uint32_t>(table.Int("length", static_cast<int>(usual->length), 11, CLIP_LENGTH_MAX));
    const bool listed = table.Has("keys");
    const auto blend = static_cast<uint32_t>(
        table.Int("blend", listed || table.Has("every") ? 0 : static_cast<int>(usual->blend), 0, CLIP_LENGTH_MAX));
    const auto step = static_cast<uint32_t>(table.Int("every", static_cast<int>(usual->step), 1, CLIP_LENGTH_MAX));
    if (listed && table.Has("every")) table.RefuseKey("every", "stands beside 'keys'", "keep one of them");
    clip.times = listed ? ListedTimes(table, length, blend) : EvenTimes(length, step, blend);
    for (const TomlTable& part : table.Tables("part"))
        ReadPart(part, joints, length, blend, clip);
    table.Finish();
    return clip;
}

SkinRecipe ReadSkinRecipe(const TomlTable& table, const std::filesystem::path& folder, size_t materials) {
    SkinRecipe skin;
    skin.file = table.NeedText("file");
    skin.uvSet = static_cast<size_t>(table.Int("uv", 0, 0, 1));
    for (const std::string& picture : table.Texts("pictures"))
        skin.pictures.push_back(folder / picture);
    if (skin.pictures.size() != materials) {
        table.RefuseTable(fmt::format("has {} pictures for {} materials", skin.pictures.size(), materials),
                          "give one for each");
    }
    table.Finish();
    return skin;
}

template <class Made>
void NeedOnce(const TomlTable& text, const char* key, const Made& made) {
    std::set<std::string> files;
    for (const auto& item : made) {
        if (!files.insert(item.file).second)
            text.RefuseKey(key, fmt::format("makes {} twice", Shown(item.file)), "drop one");
    }
}

// The first skin is worn where the recipe has none.
void CompleteSkins(const TomlTable& text, std::vector<SkinRecipe>& skins, std::vector<std::string>& notes) {
    NeedOnce(text, "skin", skins);
    if (skins.empty()) text.RefuseKey("skin", "is missing", "give at least one");
    std::set<std::string> files;
    for (const SkinRecipe& skin : skins)
        files.insert(skin.file);
    for (const char* const file : LEVEL_SKIN_FILES) {
        if (files.erase(file)) continue;
        notes.push_back(fmt::format("no skin is named for {}: that of {} is worn", file, Shown(skins[0].file)));
        skins.push_back(skins[0]);
        skins.back().file = file;
    }
    if (!files.empty())
        text.RefuseKey("skin", fmt::format("makes {}", Shown(*files.begin())), "the game loads no such file");
}

// About y, so that what looked along the given axis looks along +z.
Quaternion TurnFrom(const TomlTable& text) {
    const double half = std::sqrt(0.5);
    const Quaternion turns[] = {{1, 0, 0, 0}, {0, 0, 1, 0}, {half, 0, -half, 0}, {half, 0, half, 0}};
    return turns[text.Choice("faces", "+z", {"+z", "-z", "+x", "-x"})];
}

}  // namespace

std::vector<uint32_t> EvenTimes(uint32_t length, uint32_t step, uint32_t blend) {
    const uint32_t span = length - CHARACTER_FIRST_TIME;
    const uint32_t count = std::max(1U, (span + step / 2) / step);
    std::vector<uint32_t> times;
    for (uint32_t i = 0; i <= count; ++i) {
        const uint32_t time = CHARACTER_FIRST_TIME + (2 * i * span + count) / (2 * count);
        if (i == 0 || i == count || time >= blend) times.push_back(time);
    }
    return times;
}

CharacterRecipe ReadRecipe(const std::filesystem::path& path) {
    const TomlTable text = TomlTable::Load(path);
    const std::filesystem::path folder = path.parent_path();
    CharacterRecipe recipe;
    recipe.file = path.string();
    recipe.model = folder / text.NeedText("model");
    recipe.scale = static_cast<double>(text.Number("scale", 100, 0.001f, 100000));
    recipe.height = static_cast<double>(text.Number("height", 0, 0, 1000));
    if (recipe.height > 0 && text.Has("scale")) text.RefuseKey("scale", "stands beside 'height'", "keep one of them");
    recipe.turn = TurnFrom(text);
    recipe.origin = static_cast<double>(text.Number("origin", 110, -1000, 1000));
    recipe.joints = text.Texts("joints");
    if (recipe.joints.size() != CHARACTER_BONES || recipe.joints[0].empty()) {
        text.RefuseKey("joints", fmt::format("has {} names", recipe.joints.size()),
                       "name one joint for each of the 22 bones, '' for a bone that the model lacks");
    }
    recipe.folded = text.Texts("fold");
    recipe.foldsRest = std::erase(recipe.folded, "*") > 0;
    recipe.materials = text.Texts("materials");
    for (const TomlTable& table : text.Tables("skin"))
        recipe.skins.push_back(ReadSkinRecipe(table, folder, recipe.materials.size()));
    for (const TomlTable& table : text.Tables("clip"))
        recipe.clips.push_back(ReadClipRecipe(table, recipe.joints));
    text.Finish();
    CompleteSkins(text, recipe.skins, recipe.notes);
    NeedOnce(text, "clip", recipe.clips);
    if (!AddStandIns(recipe)) text.RefuseKey("clip", "lacks zeroidle.anm", "nothing can stand in for it: add it");
    return recipe;
}
