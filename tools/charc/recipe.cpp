#include "charc/recipe.h"

#include "formats/error.h"
#include "formats/settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace {

constexpr int LONGEST_CLIP = 100000;

// Keys every so many units, the first of them no earlier than where the game's blend into the clip ends.
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

std::vector<uint32_t> ListedTimes(const Settings& table, uint32_t length, uint32_t blend) {
    std::vector<uint32_t> times;
    for (const float number : table.Numbers("keys")) {
        if (!(number >= 0 && number <= LONGEST_CLIP))
            table.RefuseKey("keys", "holds an odd time", "give times from 10");
        times.push_back(static_cast<uint32_t>(number));
    }
    if (times.size() < 2 || times.front() != CHARACTER_FIRST_TIME || times.back() != length ||
        std::adjacent_find(times.begin(), times.end(), std::greater_equal<>()) != times.end()) {
        table.RefuseKey("keys", fmt::format("do not rise from {} to {}", CHARACTER_FIRST_TIME, length), "list them so");
    }
    if (times[1] < blend) {
        table.RefuseKey("keys", fmt::format("have one at {}, before {}", times[1], blend),
                        "move it: the game blends from the last pose to one key, and would start again at the next");
    }
    return times;
}

ClipRecipe ReadClipRecipe(const Settings& table) {
    ClipRecipe clip;
    clip.file = table.NeedText("file");
    clip.clip = table.NeedText("clip");
    clip.loop = table.Flag("loop", false);
    const auto length = static_cast<uint32_t>(table.NeedInt("length", 11, LONGEST_CLIP));
    const auto blend = static_cast<uint32_t>(table.Int("blend", 0, 0, LONGEST_CLIP));
    const auto step = static_cast<uint32_t>(table.Int("every", 0, 1, LONGEST_CLIP));
    if (step != 0 && table.Has("keys")) table.RefuseKey("every", "stands beside 'keys'", "keep one of them");
    clip.times = step != 0 ? EvenTimes(length, step, blend) : ListedTimes(table, length, blend);
    table.Finish();
    return clip;
}

SkinRecipe ReadSkinRecipe(const Settings& table, const std::filesystem::path& folder, size_t materials) {
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

template <class Made, class Wanted>
void NeedEvery(const Settings& text, const char* key, const Made& made, const Wanted& wanted) {
    std::set<std::string> files;
    for (const auto& item : made) {
        if (!files.insert(item.file).second)
            text.RefuseKey(key, fmt::format("makes {} twice", Shown(item.file)), "drop one");
    }
    std::string missing;
    for (const char* const file : wanted) {
        if (!files.erase(file)) missing += missing.empty() ? file : std::string(", ") + file;
    }
    if (!missing.empty()) text.RefuseKey(key, "lacks " + missing, "the game loads it: add it");
    if (!files.empty())
        text.RefuseKey(key, fmt::format("makes {}", Shown(*files.begin())), "the game loads no such file");
}

}  // namespace

CharacterRecipe ReadRecipe(const std::filesystem::path& path) {
    const Settings text = Settings::Load(path);
    const std::filesystem::path folder = path.parent_path();
    CharacterRecipe recipe;
    recipe.file = path.string();
    recipe.model = folder / text.NeedText("model");
    recipe.scale = static_cast<double>(text.Number("scale", 100, 0.001F, 100000));
    recipe.origin = static_cast<double>(text.Number("origin", 110, -1000, 1000));
    recipe.joints = text.Texts("joints");
    if (recipe.joints.size() != CHARACTER_BONES || recipe.joints[0].empty()) {
        text.RefuseKey("joints", fmt::format("has {} names", recipe.joints.size()),
                       "name one joint for each of the 22 bones, '' for a bone that the model lacks");
    }
    recipe.folded = text.Texts("fold");
    recipe.materials = text.Texts("materials");
    for (const Settings& table : text.Tables("skin"))
        recipe.skins.push_back(ReadSkinRecipe(table, folder, recipe.materials.size()));
    for (const Settings& table : text.Tables("clip"))
        recipe.clips.push_back(ReadClipRecipe(table));
    text.Finish();
    NeedEvery(text, "skin", recipe.skins, CHARACTER_SKIN_FILES);
    NeedEvery(text, "clip", recipe.clips, CHARACTER_CLIP_FILES);
    return recipe;
}
