#include "player/player.h"

MeshRecord PlayerMesh;
StateRecord PlayerStates[PLAYER_STATE_COUNT];             // filled in with the movement
AnimFileEntry PlayerAnimations[] = {{nullptr, nullptr}};  // likewise

// Comes with the movement: until then the player stays where the level starts.
void UpdatePlayer() {}
