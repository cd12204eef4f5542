// Which board the accelerator's calls use.
#pragma once

#include "boards/board.h"
#include "machine/options.h"

#include <span>

extern const Board* CurrentBoard;  // null: the machine has none

// How many times 640 x 480 the pictures are of a board that can draw larger ones, from its next opening on.
extern uint32_t BoardScale;

// `boards`: those of this build, the last of which works everywhere. It is the choice `auto` without a window: its
// pictures are the same everywhere. With a window `auto` takes the first one that suits.
void ChooseBoard(const Options& options, bool hasWindow, std::span<const Board* const> boards);
// `auto` settles which one is current. False: one line on standard error says why it cannot be opened.
bool OpenBoard();
