#include "character/actor.h"

#include "camera/camera_tables.h"
#include "character/animation.h"
#include "character/depth_list.h"
#include "character/leaf_bins.h"
#include "character/skin.h"
#include "lights/light_slots.h"
#include "math/convert.h"
#include "math/random.h"
#include "math/trig.h"
#include "math/vectors.h"
#include "world/world_tables.h"

#include <cmath>

void AddActor(Actor& actor, MeshRecord* mesh, StateRecord* states, int32_t x, int32_t y, int32_t z,
              AnimFileEntry* animations) {
    actor.active = 1;
    // Kept as it is: angles, velocity and contact stay as the level before left them.
    actor.mesh = mesh;
    actor.states = states;
    actor.animations = animations;
    actor.position = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    actor.state = 0;
    for (uint32_t& time : actor.layerTimes)
        time = ANIM_START_TIME;
    actor.blendDuration = 0;  // a blend would start from bones of the previous level's mesh, which are gone
    if (ActorCount < ACTOR_LIST_SIZE) ActorList[ActorCount++] = &actor;
}

void UpdateActorBase(Actor& actor) {
    Matrix3 m;
    RotationFromAngles(actor.angles.x, -(actor.angles.y + 180.0f), actor.angles.z, m);
    // Transposed, because a Transform takes row vectors and a Matrix3 takes column vectors.
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            actor.base.r[row * 3 + column] = m.m[column * 3 + row];
    }
    actor.base.t[0] = actor.position.x;
    actor.base.t[1] = actor.position.y;
    actor.base.t[2] = actor.position.z;
}

void DrawActorAt(int16_t index) {
    Actor& actor = *ActorList[index];
    PoseActor(actor);
    DrawActor(actor);
}

namespace {

void ListFacingTriangles(const MeshRecord& mesh) {
    ClearVisibleList();
    for (uint32_t i = 0; i < mesh.faceCount; ++i) {
        const uint32_t polygon = uint32_t{mesh.firstPolygon} + i;
        PolyVertex* corners = WorldGeometry.polyVertices + WorldGeometry.polygons[polygon].firstVertex;
        if (FacingSide(corners[0].point, corners[1].point, corners[2].point, CameraPos) >= 0) continue;
        for (int k = 0; k < 3; ++k)
            corners[k].intensity = IntensityCache[corners[k].point];
        AppendVisible(polygon);
    }
}

// What a light at distance `dist` along d gives the character, with the direction in the character's own frame.
CharacterLight LightOnActor(const LightSlot& slot, const Vec3& d, float dist, double headingRadians) {
    if (dist == 0.0f || slot.radius == 0.0f) return {dist, {}, slot.intensity};
    const Vec3 u = {d.x / dist, d.y / dist, d.z / dist};
    const auto c = static_cast<float>(Cos(headingRadians));
    const auto s = static_cast<float>(Sin(headingRadians));
    return {dist, {u.x * c + u.z * s, u.y, u.z * c - u.x * s}, (1.0f - dist / slot.radius) * slot.intensity};
}

}  // namespace

void DrawActor(Actor& actor) {
    actor.randomWord = Rand();
    GatherActorLights(actor.position.x, actor.position.y, actor.position.z);
    SkinActor(actor);
    BinActor(actor);
    // Kept as it is: the base is rebuilt last, so the next pose uses that of this frame.
    UpdateActorBase(actor);
}

void BinActor(const Actor& actor) {
    InitDepthList();
    ListFacingTriangles(*actor.mesh);
    BinActorPolygons(VisibleCount(), actor.position.x, actor.position.y, actor.position.z);
}

void GatherActorLights(float x, float y, float z) {
    const double heading = (static_cast<double>(PlayerActor.angles.y) + 180.0) * 3.141592653589793 / 180.0;
    CharacterLightCount = 0;
    for (const LightSlot& slot : LightSlots) {
        if (slot.type == LIGHT_FREE) continue;
        const Vec3 position = slot.position;
        const Vec3 d = {x - position.x, y - position.y, z - position.z};
        const float q = d.x * d.x + d.y * d.y + d.z * d.z;
        if (!(q <= static_cast<float>(slot.radiusSquared))) continue;
        CharacterLightList[CharacterLightCount++] = LightOnActor(slot, d, std::sqrt(q), heading);
        if (CharacterLightCount == CHARACTER_LIGHT_COUNT) return;
    }
}

int32_t FacingSide(uint32_t a, uint32_t b, uint32_t c, const Vec3& eye) {
    const ViewPoint& p0 = WorldGeometry.viewPoints[a];
    const ViewPoint& p1 = WorldGeometry.viewPoints[b];
    const ViewPoint& p2 = WorldGeometry.viewPoints[c];
    const Vec3 first = {p0.x, p0.y, p0.z};
    const Vec3 normal = Cross(Vec3{p1.x, p1.y, p1.z} - first, Vec3{p2.x, p2.y, p2.z} - first);
    const float side = Dot(normal, eye) - Dot(normal, first);
    // Kept as it is: the cut makes a triangle that is seen almost edge-on count as facing away.
    return TruncToInt(static_cast<double>(side));
}
