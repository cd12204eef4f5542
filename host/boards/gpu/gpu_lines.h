// Lines as triangles that cover the same pixels: one in each column, or in each row of a steep line, both ends
// included.
#pragma once

#include "boards/board.h"

constexpr uint32_t GPU_LINE_VERTICES = 18;

// `count` is even: two ends of each line.
void AppendLines(const BoardVertex* ends, uint32_t count, std::vector<BoardVertex>& triangles);
