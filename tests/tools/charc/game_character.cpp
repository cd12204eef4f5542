#include "game_character.h"

#include "character/animation.h"
#include "character/mesh.h"
#include "character/skin.h"
#include "math/vectors.h"
#include "world/world_tables.h"

GameCharacter::GameCharacter() {
    actor_.mesh = &mesh_;
    actor_.states = &state_;
    actor_.animations = &entry_;
    TransformIdentity(actor_.base);
    state_.animations[1] = -1;
}

void GameCharacter::Load(const std::filesystem::path& folder) {
    folder_ = folder;
    world_.Publish();
    CharPointBase = WorldGeometry.used.points;
    CharPolyBase = WorldGeometry.used.polygons;
    LoadMesh((folder / "zero.msh").c_str(), mesh_, (folder / "zero.tuv").c_str());
    testing::internal::CaptureStdout();
    actor_.weights = LoadWeights((folder / "zero.wei").c_str(), mesh_);
    testing::internal::GetCapturedStdout();
}

std::vector<Vec3> GameCharacter::PointsAt(const std::string& clip, uint32_t time) {
    LoadAnimation((folder_ / clip).c_str(), animation_, mesh_);
    actor_.layerTimes[0] = time;
    PoseActor(actor_);
    SkinActor(actor_);
    PoolFree(const_cast<uint8_t*>(animation_.image));
    std::vector<Vec3> points;
    for (int i = mesh_.firstPoint; i < mesh_.firstPoint + mesh_.pointCount; ++i)
        points.push_back({WorldGeometry.viewPoints[i].x, WorldGeometry.viewPoints[i].y, WorldGeometry.viewPoints[i].z});
    return points;
}
