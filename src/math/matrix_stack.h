// The stack of transforms that the skeleton walk saves. It is empty at program start and nothing else empties it: every
// push must be matched by a pop.
#pragma once

#include "records/matrices.h"

constexpr int MATRIX_STACK_SIZE = 64;
constexpr const char* MATRIX_STACK_OVERFLOW = "Matrix stack overflow.";
constexpr const char* MATRIX_STACK_UNDERFLOW = "Matrix stack underflow";

void PushMatrix(const Transform& t);  // FatalError(1, MATRIX_STACK_OVERFLOW) when 64 are held
void PopMatrix(Transform& t);         // FatalError(1, MATRIX_STACK_UNDERFLOW) when none is held
