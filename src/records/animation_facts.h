// The player's animations: what the game's table of them calls each, and its file in game/data/anims. The game takes
// its table from here, and so do the tools that make the files and check them. Data only.
//
// The two jumps play the same four files and load them once each. Four files are loaded, but no state plays them.
#pragma once

#include <cstdint>

// clang-format off
#define PLAYER_ANIMATIONS(ANIMATION)          \
    ANIMATION(BACK,          "zeroback.anm")  \
    ANIMATION(HOLD_ARMS,     "zerofol2.anm")  \
    ANIMATION(UNFOLD_ARMS,   "zerofol3.anm")  \
    ANIMATION(FOLD_ARMS,     "zerofold.anm")  \
    ANIMATION(IDLE,          "zeroidle.anm")  \
    ANIMATION(UNPLAYED_REBO, "zerorebo.anm")  \
    ANIMATION(READY,         "zeroredy.anm")  \
    ANIMATION(RUN_UP,        "zeroreru.anm")  \
    ANIMATION(FIDGET_LEFT,   "zeroretl.anm")  \
    ANIMATION(FIDGET_RIGHT,  "zeroretr.anm")  \
    ANIMATION(RUN,           "zerorun.anm")   \
    ANIMATION(UNPLAYED_RUWL, "zeroruwl.anm")  \
    ANIMATION(UNPLAYED_STAN, "zerostan.anm")  \
    ANIMATION(WALK,          "zerowalk.anm")  \
    ANIMATION(UNPLAYED_WBRE, "zerowbre.anm")  \
    ANIMATION(LEAP_CROUCH,   "zerojum1.anm")  \
    ANIMATION(LEAP_TAKE_OFF, "zerojum2.anm")  \
    ANIMATION(LEAP_AIR,      "zerojum3.anm")  \
    ANIMATION(LEAP_LAND,     "zerojum4.anm")  \
    ANIMATION(HOP_CROUCH,    "zerojum1.anm")  \
    ANIMATION(HOP_TAKE_OFF,  "zerojum2.anm")  \
    ANIMATION(HOP_AIR,       "zerojum3.anm")  \
    ANIMATION(HOP_LAND,      "zerojum4.anm")
// clang-format on

// Indices of the table.
enum PlayerAnimation : int16_t {
#define ANIMATION(NAME, FILE) ANIMATION_##NAME,
    PLAYER_ANIMATIONS(ANIMATION)
#undef ANIMATION
        PLAYER_ANIMATION_COUNT
};

inline constexpr const char* PLAYER_ANIMATION_FILES[PLAYER_ANIMATION_COUNT] = {
#define ANIMATION(NAME, FILE) FILE,
    PLAYER_ANIMATIONS(ANIMATION)
#undef ANIMATION
};
