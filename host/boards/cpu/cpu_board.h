// The accelerator drawn by the processor: the reference for every other board.
#pragma once

#include "boards/board.h"

extern const Board CpuBoard;

bool CpuBoardHasAvx2();
extern unsigned
    CpuBoardThreads;  // used from the next opening on, as 1..4; the processor's number unless a test changes it
extern bool CpuBoardUsesAvx2;  // CpuBoardHasAvx2() unless a test or benchmark changes it; the pictures are the same
