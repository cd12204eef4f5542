// The accelerator drawn by the processor: the reference for every other board.
#pragma once

#include "boards/board.h"

extern const Board CpuBoard;

bool CpuBoardHasAvx2();
extern bool CpuBoardUsesAvx2;  // CpuBoardHasAvx2() unless a test or benchmark changes it; the pictures are the same
