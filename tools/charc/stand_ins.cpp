#include "charc/stand_ins.h"

#include "formats/error.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

struct StandIn {
    const char* file;
    const char* source;
    ClipPlay play;
};

// The first row for a file whose source the recipe has is taken; without one, zeroidle.anm's first pose.
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

bool AddStandIns(CharacterRecipe& recipe) {
    const std::vector<ClipRecipe> given = recipe.clips;
    if (!Find(given, "zeroidle.anm")) return false;
    for (const UsualClip& usual : CHARACTER_CLIPS) {
        if (Find(given, usual.file)) continue;
        StandIn chosen = {usual.file, "zeroidle.anm", ClipPlay::FIRST_POSE};
        for (const StandIn& standIn : STAND_INS) {
            if (standIn.file != std::string_view(usual.file) || !Find(given, standIn.source)) continue;
            chosen = standIn;
            break;
        }
        ClipRecipe clip = *Find(given, chosen.source);
        const bool sameKind = clip.loop == usual.loop && chosen.play != ClipPlay::FIRST_POSE;
        if (!sameKind) {
            clip.times = EvenTimes(usual.length, usual.step, usual.blend);
            clip.ownTimes = {};
        }
        clip.file = usual.file;
        clip.play = chosen.play;
        clip.loop = usual.loop;
        recipe.clips.push_back(clip);
        recipe.notes.push_back(fmt::format("no clip is named for {}: '{}' stands in{}", usual.file, Shown(clip.clip),
                                           Manner(chosen.play)));
    }
    return true;
}
