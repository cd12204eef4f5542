// Which board the accelerator's calls use.
#pragma once

#include "boards/board.h"
#include "machine/options.h"

#include <span>

extern const Board* CurrentBoard;  // null: the machine has none

// How many times 640 x 480 a board that can draw larger pictures makes them, from its next opening on. 0: as many as
// the window then shows, where there is a graphics card.
extern uint32_t BoardScale;

// `boards`: those of this build; the last one works everywhere, and its pictures are the same everywhere. Without a
// window the choice `auto` is that last one; with a window it is the first one that suits.
void ChooseBoard(const Options& options, bool hasWindow, std::span<const Board* const> boards);
// The same from the next OpenBoard on; a machine without a board goes on without.
void ChangeBoard(BoardChoice choice, uint32_t scale);
// Opens CurrentBoard, which the choice `auto` settles here. False: one line on standard error says why it cannot open.
bool OpenBoard();
