// Quaternions of the animation keys, in double precision. Angles are radians.
//
// The matrix forms are nine doubles row by row. The row-vector form is used as p R, like the rotation of a
// Transform; the column-vector form, R p, is its transpose. An output argument may not be one of the inputs.
// See Shoemake, "Animating Rotation with Quaternion Curves", 1985.
//
// The set is complete, so that what makes and measures animations finds each operation: the game itself calls only
// some of them.
#pragma once

#include "records/matrices.h"

struct AxisAngle {
    double angle, x, y, z;  // the axis is expected to be of unit length
};

void QuatFromAxisAngle(const AxisAngle& a, Quat& out);  // w >= 0; says so on standard output beyond half a turn
void QuatToAxisAngle(Quat& q, AxisAngle& out);          // |w| > 1: q becomes the identity
void QuatMultiply(const Quat& a, const Quat& b, Quat& out);
void QuatMultiplyConj(const Quat& a, const Quat& b, Quat& out);  // a conjugate(b)
void QuatNormalize(Quat& q);                                     // zero stays zero
void QuatToMatrix(const Quat& q, double out[9]);                 // row-vector form
void QuatToMatrixColumn(const Quat& q, double out[9]);
void MatrixToQuat(const double r[9], Quat& out);  // from the row-vector form; w >= 0
void QuatRotateVector(const Quat& q, const double v[3], double out[3]);
// From a (t = 0) to b (t = 1), t clamped to that range. b is not flipped towards a, the result not renormalised.
void QuatSlerp(const Quat& a, const Quat& b, Quat& out, double t);
