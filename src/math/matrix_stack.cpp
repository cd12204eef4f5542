#include "math/matrix_stack.h"

#include "memory/fatal.h"

namespace {

int Depth;
Transform Saved[MATRIX_STACK_SIZE];

}  // namespace

void PushMatrix(const Transform& t) {
    if (Depth >= MATRIX_STACK_SIZE) FatalError(1, MATRIX_STACK_OVERFLOW);
    Saved[Depth++] = t;
}

void PopMatrix(Transform& t) {
    if (Depth <= 0) FatalError(1, MATRIX_STACK_UNDERFLOW);
    t = Saved[--Depth];
}
