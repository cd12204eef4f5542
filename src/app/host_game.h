// What the machine is told of the game: its name, the screens before a level, and the keys that choose on them.
#pragma once

#include "host/host.h"

extern const HostGame GameForHost;
