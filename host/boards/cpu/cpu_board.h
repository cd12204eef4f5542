// The accelerator drawn by the processor: the reference for every other board.
#pragma once

#include "boards/board.h"

extern const Board CpuBoard;

bool CpuBoardHasAvx2();
extern unsigned CpuBoardThreads;  // 1..4 are used, from the next opening on; the processor's unless changed likewise
extern bool CpuBoardUsesAvx2;     // CpuBoardHasAvx2() unless a test or benchmark changes it; the pictures are the same
