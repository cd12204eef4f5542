#include "charc/stand_ins.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

// In loops keys every 20: the blends into them then end with a fifth of the way.
constexpr std::array<UsualClip, 19> USUAL = {{
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

struct StandIn {
    const char* file;
    const char* source;
    ClipPlay play;
};

// The first whose source the recipe has. Else zeroidle.anm's first pose.
constexpr StandIn STAND_INS[] = {
    {"zerorun.anm", "zerowalk.anm", ClipPlay::AS_IT_IS},    {"zerowalk.anm", "zerorun.anm", ClipPlay::AS_IT_IS},
    {"zeroback.anm", "zerowalk.anm", ClipPlay::BACKWARDS},  {"zeroback.anm", "zerorun.anm", ClipPlay::BACKWARDS},
    {"zeroreru.anm", "zerorun.anm", ClipPlay::AS_IT_IS},    {"zeroreru.anm", "zerowalk.anm", ClipPlay::AS_IT_IS},
    {"zeroruwl.anm", "zerorun.anm", ClipPlay::AS_IT_IS},    {"zerojum2.anm", "zerojum3.anm", ClipPlay::FIRST_POSE},
    {"zerojum3.anm", "zerojum2.anm", ClipPlay::AS_IT_IS},   {"zerojum4.anm", "zeroredy.anm", ClipPlay::FIRST_POSE},
    {"zerorebo.anm", "zeroredy.anm", ClipPlay::FIRST_POSE}, {"zerostan.anm", "zeroidle.anm", ClipPlay::AS_IT_IS},
    {"zerowbre.anm", "zeroidle.anm", ClipPlay::AS_IT_IS},
};

const ClipRecipe* Find(const std::vector<ClipRecipe>& clips, const std::string& file) {
    const auto found = std::find_if(clips.begin(), clips.end(), [&](const ClipRecipe& c) { return c.file == file; });
    return found == clips.end() ? nullptr : &*found;
}

const char* Manner(ClipPlay play) {
    switch (play) {
    case ClipPlay::BACKWARDS: return " backwards";
    case ClipPlay::FIRST_POSE: return " with its first pose";
    default: return "";
    }
}

}  // namespace

const UsualClip* UsualClipOf(const std::string& file) {
    const auto found = std::find_if(USUAL.begin(), USUAL.end(), [&](const UsualClip& u) { return u.file == file; });
    return found == USUAL.end() ? nullptr : &*found;
}

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

bool AddStandIns(CharacterRecipe& recipe) {
    const std::vector<ClipRecipe> given = recipe.clips;
    if (!Find(given, "zeroidle.anm")) return false;
    for (const UsualClip& usual : USUAL) {
        if (Find(given, usual.file)) continue;
        StandIn chosen = {usual.file, "zeroidle.anm", ClipPlay::FIRST_POSE};
        for (const StandIn& standIn : STAND_INS) {
            if (standIn.file != std::string_view(usual.file) || !Find(given, standIn.source)) continue;
            chosen = standIn;
            break;
        }
        ClipRecipe clip = *Find(given, chosen.source);
        const bool sameKind = clip.loop == usual.loop && chosen.play != ClipPlay::FIRST_POSE;
        if (!sameKind) clip.times = EvenTimes(usual.length, usual.step, usual.blend);
        clip.file = usual.file;
        clip.play = chosen.play;
        clip.loop = usual.loop;
        recipe.clips.push_back(clip);
        recipe.notes.push_back(
            fmt::format("no clip is named for {}: '{}' stands in{}", usual.file, clip.clip, Manner(chosen.play)));
    }
    return true;
}
