#include "app/host_game.h"

#include "app/app_tables.h"
#include "app/between.h"
#include "app/front_end.h"

const HostGame GameForHost = {.program = "tarnwick",
                              .title = APP_TITLE,
                              .frontEndBits = FRONT_END_BITS,
                              .startKey = START_KEY,
                              .levelKeys = LevelKeys,
                              .softwareKey = SOFTWARE_KEY,
                              .acceleratorKey = ACCELERATOR_KEY,
                              .drawBetween = DrawBetween,
                              .drawFrom = DrawFrom,
                              .pointOnScreen = PointOnScreen};
