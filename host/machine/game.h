// The game that the machine runs.
#pragma once

#include "host/host.h"

// What HostMain was given; until then a game without a level. Never null.
extern const HostGame* CurrentGame;
