#include "character/actor.h"

#include "math/vectors.h"

namespace {

constexpr uint32_t ANIM_START_TIME = 10;

}  // namespace

void AddActor(Actor& actor, MeshRecord* mesh, StateRecord* states, int32_t x, int32_t y, int32_t z,
              AnimFileEntry* animations) {
    actor.active = 1;
    actor.mesh = mesh;
    actor.states = states;
    actor.animations = animations;
    actor.position = {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
    actor.state = 0;
    for (uint32_t& time : actor.layerTimes)
        time = ANIM_START_TIME;
    actor.blendDuration = 0;  // a blend would start from the bones of a mesh that is gone
    if (ActorCount < ACTOR_LIST_SIZE) ActorList[ActorCount++] = &actor;
}

void UpdateActorBase(Actor& actor) {
    Matrix3 m;
    RotationFromAngles(actor.angles.x, -(actor.angles.y + 180.0f), actor.angles.z, m);
    // The transpose: a Transform takes row vectors, a Matrix3 column vectors.
    for (int row = 0; row < 3; row++)
        for (int column = 0; column < 3; column++)
            actor.base.r[row * 3 + column] = m.m[column * 3 + row];
    actor.base.t[0] = actor.position.x;
    actor.base.t[1] = actor.position.y;
    actor.base.t[2] = actor.position.z;
}
