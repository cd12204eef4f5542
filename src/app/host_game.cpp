#include "app/host_game.h"

#include "app/app_tables.h"
#include "app/between.h"
#include "app/front_end.h"
#include "host/dinput.h"

namespace {

constexpr HostKey KEYS[] = {
    {"run", "Run", DIK_UP, {}},
    {"step_back", "Step back", DIK_DOWN, {}},
    {"turn_left", "Turn left", DIK_LEFT, {}},
    {"turn_right", "Turn right", DIK_RIGHT, {}},
    {"walk", "Walk, with Run", DIK_LSHIFT, {DIK_RSHIFT, DIK_LMENU, DIK_RMENU}},
    {"jump", "Jump", DIK_SPACE, {}},
    {"fire", "Fire", DIK_RCONTROL, {DIK_X}},  // many keyboards have no right Ctrl
    {"follow", "Camera that follows", DIK_F5, {}},
    {"fly", "Camera that flies", DIK_F6, {}},
    {"restart", "Back to the start", DIK_R, {}},
};

constexpr HostKey DEVELOPMENT_KEYS[] = {
    {"place", "Print the camera's place", DIK_F8, {}},
    {"outlines", "Outlines", DIK_W, {}},
    {"lighting", "Ways of lighting", DIK_D, {}},
    {"far_out", "End of sight: farther", DIK_O, {}},
    {"far_in", "End of sight: nearer", DIK_L, {}},
    {"fade_out", "Full fog: farther", DIK_I, {}},
    {"fade_in", "Full fog: nearer", DIK_K, {}},
    {"fog_out", "First fog: farther", DIK_U, {}},
    {"fog_in", "First fog: nearer", DIK_J, {}},
    {"darker", "Darker", DIK_Y, {}},
    {"brighter", "Brighter", DIK_H, {}},
    {"less_contrast", "Less contrast", DIK_T, {}},
    {"more_contrast", "More contrast", DIK_G, {}},
};

}  // namespace

const HostGame GameForHost = {.program = "tarnwick",
                              .title = APP_TITLE,
                              .frontEndBits = FRONT_END_BITS,
                              .startKey = START_KEY,
                              .levelKeys = LevelKeys,
                              .softwareKey = SOFTWARE_KEY,
                              .acceleratorKey = ACCELERATOR_KEY,
                              .keys = KEYS,
                              .moreKeys = DEVELOPMENT_KEYS,
                              .drawBetween = DrawBetween,
                              .drawFrom = DrawFrom,
                              .pointOnScreen = PointOnScreen};
