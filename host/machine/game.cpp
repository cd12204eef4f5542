#include "machine/game.h"

namespace {

constexpr HostGame NO_GAME = {.program = "host",
                              .title = "host",
                              .frontEndBits = 0,
                              .startKey = 0,
                              .levelKeys = {},
                              .softwareKey = 0,
                              .acceleratorKey = 0,
                              .keys = {},
                              .moreKeys = {},
                              .drawBetween = nullptr,
                              .drawFrom = nullptr,
                              .pointOnScreen = nullptr};

}  // namespace

const HostGame* CurrentGame = &NO_GAME;
