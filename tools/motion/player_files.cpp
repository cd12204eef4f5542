#include "motion/player_files.h"

#include "character/actor.h"
#include "character/animation.h"
#include "character/mesh.h"
#include "math/convert.h"
#include "math/vectors.h"
#include "player/player.h"
#include "world/world_tables.h"

void PlayerFiles::Load(const std::filesystem::path& folder, const Vec3& start) {
    CharPointBase = WorldGeometry.used.points;
    CharPolyBase = WorldGeometry.used.polygons;
    LoadMesh((folder / "zero.msh").c_str(), PlayerMesh, (folder / "zero.tuv").c_str());
    for (const AnimFileEntry* entry = PlayerAnimations; entry->path; ++entry) {
        const std::string path = entry->path;
        paths_.push_back((folder / path.substr(path.rfind('\\') + 1)).string());
    }
    for (size_t i = 0; i < paths_.size(); ++i)
        animations_.push_back({paths_[i].c_str(), PlayerAnimations[i].record});
    animations_.push_back({nullptr, nullptr});
    LoadAnimations(animations_.data(), PlayerMesh);

    PlayerActor = {};
    AddActor(PlayerActor, &PlayerMesh, PlayerStates.data(), TruncToInt(start.x), TruncToInt(start.y),
             TruncToInt(start.z), animations_.data());
    ActorCount = 0;
    TransformIdentity(PlayerActor.base);
}
