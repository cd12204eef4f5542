// Which board the accelerator's calls use.
#pragma once

#include "boards/board.h"
#include "core/options.h"

extern const Board* CurrentBoard;  // null: the machine has none

void ChooseBoard(BoardChoice choice);
