// The program from its command line to its end.
#pragma once

#include "boards/board.h"
#include "host/host.h"
#include "machine/machine.h"

#include <span>

// What a build for one kind of computer is put together from. The last of each row works everywhere.
struct HostParts {
    std::span<const Machine* const> machines;  // in the order in which they are tried; the last one has no window
    std::span<const Board* const> boards;      // in the order in which --board auto tries them
};

// HostMain of a build with these parts.
int RunProgram(int argumentCount, char** arguments, const HostParts& parts, const HostGame& game, GameMain gameMain);
