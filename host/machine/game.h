// The game that the machine runs.
#pragma once

#include "host/host.h"

// The game that HostMain was given; before that, a game without a level. Never null.
extern const HostGame* CurrentGame;
