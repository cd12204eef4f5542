// The player character: its states, and its per-frame step. Where it is: PlayerActor.
#pragma once

#include "character/character_tables.h"
#include "records/character_records.h"

#include <array>

enum PlayerState : int32_t {
    STATE_STAND,
    STATE_FOLD_ARMS,  // the long fidget: fold, hold, unfold
    STATE_HOLD_ARMS,
    STATE_UNFOLD_ARMS,
    STATE_READY,  // into the run
    STATE_RUN_UP,
    STATE_RUN,
    STATE_BACK,
    STATE_HALT,
    STATE_FIDGET_RIGHT,
    STATE_FIDGET_LEFT,
    STATE_LEAP_CROUCH,
    STATE_LEAP_TAKE_OFF,
    STATE_LEAP_AIR,
    STATE_LEAP_LAND,
    STATE_HOP_CROUCH,
    STATE_HOP_TAKE_OFF,
    STATE_HOP_AIR,
    STATE_HOP_LAND,
    STATE_WALK,
    PLAYER_STATE_COUNT
};

extern MeshRecord PlayerMesh;
extern std::array<StateRecord, PLAYER_STATE_COUNT> PlayerStates;  // by PlayerState
extern AnimFileEntry PlayerAnimations[];                          // by PlayerAnimation; ends without a path
extern int16_t JumpHeld;  // 1 from a jump's start until a take-off state finds the jump key released

void UpdatePlayer();  // states and clocks, the move, then pose and draw
