#include "clip_sheet/film_rows.h"

#include "motion/report.h"

#include "character/actor.h"
#include "host/files.h"
#include "math/vectors.h"

#include <fmt/format.h>

#include <algorithm>

std::vector<FilmRow> FilmsInto(const std::vector<std::string>& states, uint32_t ticks) {
    Stage stage(std::filesystem::absolute(HostDataFolder()) / "game/data/anims");
    const Movement movement = Explore(stage, ticks);
    std::vector<FilmRow> films;
    for (int32_t to = 0; to < PLAYER_STATE_COUNT; ++to) {
        const bool wanted = states.empty() || std::find(states.begin(), states.end(), NameOf(to)) != states.end();
        for (const auto& [pair, transition] : movement.transitions) {
            if (!wanted || pair.second != to) continue;
            const std::string name = fmt::format("{} -> {}, worst at frame {}: {:.1f}", NameOf(pair.first), NameOf(to),
                                                 transition.worstFrame, transition.worst.largest);
            films.push_back({name, transition.worstCase});
        }
    }
    return films;
}

void DrawPlayerAs(const Moment& moment) {
    for (size_t b = 0; b < PlayerMesh.boneCount; ++b)
        TransformConcat(PlayerActor.base, moment.bones[b], PlayerMesh.bones[b].world);
    DrawActor(PlayerActor);
}
