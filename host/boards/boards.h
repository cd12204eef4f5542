// Which board the accelerator's calls use.
#pragma once

#include "boards/board.h"
#include "core/options.h"

extern const Board* CurrentBoard;  // null: the machine has none

// Without a window the choice `auto` is the cpu board: its pictures are the same everywhere.
void ChooseBoard(const Options& options, bool hasWindow);
// `auto` settles which one is current. False: one line on standard error says why it cannot be opened.
bool OpenBoard();
