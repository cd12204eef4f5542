// Rotations and transforms.
#pragma once

#include "math/vector_operators.h"
#include "records/matrices.h"
#include "records/vec3.h"

#include <cstdint>

extern Vec3 RotatedVector;        // result of RotateVector and RotateVectorT
extern IntVec3 RotatedIntVector;  // result of RotateIntVector and RotateIntVectorT

// Degrees; Rz(az) Rx(ax) Ry(ay), for column vectors.
void RotationFromAngles(float ax, float ay, float az, Matrix3& out);
void ViewRotationFromAngles(float ax, float ay, float az, Matrix3& out);  // row 1 multiplied by ScreenAspect

void RotateVector(float x, float y, float z, const Matrix3& m);
void RotateVectorT(float x, float y, float z, const Matrix3& m);  // multiplies by the transpose of m
void RotateIntVector(int32_t x, int32_t y, int32_t z, const Matrix3& m);
void RotateIntVectorT(int32_t x, int32_t y, int32_t z, const Matrix3& m);

void TransformIdentity(Transform& t);
void TransformConcat(const Transform& a, const Transform& b, Transform& out);  // b first; out is neither
void RotateDVector(double v[3], const double r[9]);                            // v := v R
