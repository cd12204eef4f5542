#include "player/player.h"

#include "character/actor.h"
#include "character/animation.h"
#include "world/collision.h"

MeshRecord PlayerMesh;

void UpdatePlayer() {
    AdvanceActor(PlayerActor);
    MoveAgainstWorld(PlayerActor);
    DrawActorAt(0);
}
