// What the machine is told of the game: its name, the screens before a level, the keys that choose there.
#pragma once

#include "host/host.h"

extern const HostGame GameForHost;
