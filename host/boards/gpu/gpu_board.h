// The accelerator drawn by OpenGL: the cpu board's pictures, or whole multiples of their size (BoardScale). At the same
// size channels differ by two steps at most, except in fewer than one pixel in 500, at edges and where a hole or a mip
// level begins.
#pragma once

#include "boards/board.h"

extern const Board GpuBoard;
