// The transforms saved by the skeleton walk. The depth is 0 at program start and nothing else resets it: every push
// must be matched by a pop.
#pragma once

#include "records/matrices.h"

constexpr int MATRIX_STACK_SIZE = 64;

void PushMatrix(const Transform& t);  // FatalError(1, "Matrix stack overflow.") when 64 are held
void PopMatrix(Transform& t);         // FatalError(1, "Matrix stack underflow") when none is held
